#include "ForeignReaders.h"

#include "Requirement.h"
#include "model/HistorySampleParser.h"
#include "model/UsageHistoryReader.h"
#include "model/UsageJSON.h"
#include "platform/PreferencesFile.h"
#include "presentation/LaunchAtLoginController.h"
#include "presentation/NoticeMemory.h"
#include "presentation/SettingsCatalog.h"
#include "probes/antigravity/AntigravityReading.h"
#include "probes/claude/ClaudeDiagnostics.h"
#include "probes/claude/ClaudeQuery.h"
#include "probes/claude/ClaudeSessionInterpretation.h"
#include "probes/claude/ClaudeStatusInput.h"
#include "probes/codex/CodexReading.h"
#include "report/RedactionStream.h"
#include "report/SupportReport.h"
#include "setup/ClaudeStatusLine.h"
#include "store/ActivityLines.h"
#include "store/ActivityTexts.h"
#include "store/LastSnapshots.h"
#include "store/StatusLineReadings.h"
#include "text/CatalogSource.h"
#include "text/Redaction.h"
#include "text/TerminalLayout.h"
#include "text/TerminalText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <variant>
#include <vector>

namespace vellmark {
namespace {

namespace fs = std::filesystem;

const Instant readingTime(Seconds(785000000));
constexpr std::string_view home = "/home/someone";

/// A directory of this process, for the readers of files; in memory where the system has such a
/// place and nobody has chosen another.
class Scratch {
public:
    Scratch() {
        const char* const inMemory = "/dev/shm";
        const bool isChosen = std::getenv("TMPDIR") != nullptr;
        const fs::path base =
            !isChosen && ::access(inMemory, W_OK) == 0 ? inMemory : fs::temp_directory_path();
        std::string name = (base / "vellmark-readers-XXXXXX").string();
        require(::mkdtemp(name.data()) != nullptr);
        path_ = name;
    }
    ~Scratch() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    /// For reading and writing.
    int open(const char* name) const {
        const int descriptor = ::open((path_ / name).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        require(descriptor >= 0);
        return descriptor;
    }
    fs::path write(const char* name, std::string_view bytes) const {
        const int descriptor = open(name);
        fill(descriptor, bytes);
        ::close(descriptor);
        return path_ / name;
    }
    /// `bytes` are the whole of the file. What it holds of them already keeps its place: to give
    /// that back first costs more than to read it.
    static void fill(int descriptor, std::string_view bytes) {
        const auto size = static_cast<ssize_t>(bytes.size());
        require(::pwrite(descriptor, bytes.data(), bytes.size(), 0) == size &&
                ::ftruncate(descriptor, size) == 0);
    }

private:
    fs::path path_;
};

const Scratch& scratch() {
    static const Scratch directory;
    return directory;
}

const Localization& english() {
    static const Localization words("en", "en_US", "UTC");
    return words;
}

// --- what agents print

/// Any capture, with any exit status, is a snapshot or a UsageProviderError.
void readClaudeScreen(std::string_view bytes) {
    const std::int32_t status = bytes.empty() ? 0 : static_cast<unsigned char>(bytes.front());
    const ClaudeScreen screen(bytes.substr(std::min<std::size_t>(bytes.size(), 1)));
    try {
        interpretClaudeSession(screen, {status, false}, readingTime);
    } catch (const UsageProviderError&) {
    }
    claudeTimingNote(screen, {});
    redactedClaudeScreen(screen.text(), home);
}

/// Any answer, of any version, is a snapshot or a UsageProviderError; so is any login status.
void readClaudeQuery(std::string_view bytes) {
    static const std::array<std::optional<VersionNumber>, 3> versions = {
        std::nullopt, VersionNumber{{2, 1, 235}}, VersionNumber{{2, 1, 330}}};
    isClaudeQueryOutput(bytes);
    parseClaudeQueryReply(bytes, "r1");
    const ClaudeQueryReply reply = parseClaudeQueryReply(bytes, std::nullopt);
    const ClaudeLogin login = parseClaudeLogin(bytes);
    for (const auto& version : versions) {
        try {
            claudeQuerySnapshot(reply.answer, login, version, readingTime);
        } catch (const UsageProviderError&) {
        }
    }
}

/// What a session hands to the status line, kept and told again.
void readStatusInput(std::string_view bytes) {
    const auto input = parseClaudeStatusInput(bytes, readingTime);
    if (input) {
        AgentUsageSnapshot snapshot;
        snapshot.id = AgentProviderID::claude();
        const SessionFigures figures{input->session, input->turn, readingTime, input->windows};
        takeNewerWindows(snapshot, newestWindows({figures}, readingTime), readingTime);
    }
}

void readCodex(std::string_view bytes) {
    try {
        codexSnapshot(bytes, readingTime, home);
    } catch (const UsageProviderError&) {
    }
}

/// A zero byte separates the output and the log.
void readAntigravity(std::string_view bytes) {
    const std::size_t end = std::min(bytes.find('\0'), bytes.size());
    AntigravityRun run;
    run.output = AntigravityOutput::read(bytes.substr(0, end), TimeZone::utc());
    run.log = end < bytes.size() ? bytes.substr(end + 1) : bytes;
    run.exitStatus = 1;
    try {
        antigravitySnapshot(run, readingTime);
    } catch (const UsageProviderError&) {
    }
}

/// Laid out as text of a size that its own allows; what moves no cursor stays as it is.
void readTerminal(std::string_view bytes) {
    const std::string text = laidOutText(bytes);
    require(text.size() <= 16 * bytes.size() + 300000);
    if (movesCursor(bytes)) {
        require(isValidUTF8(text + drawnText(bytes)));
    } else {
        require(text == stripANSI(bytes));
    }
    require(singleLine(bytes).find('\n') == std::string::npos);
}

// --- the files beside the program

/// What was read is written and read again as the same.
void readSnapshots(std::string_view bytes) {
    try {
        const auto snapshots = snapshotsFromDocument(bytes);
        require(snapshotsFromDocument(snapshotsDocument(snapshots)) == snapshots);
    } catch (const JSONDecodingError&) {
    }
}

void readLastReadings(std::string_view bytes) {
    LastSnapshots(scratch().write("last-snapshots.json", bytes)).contents();
    StatusLineReadings(scratch().write("status-line.json", bytes)).read();
}

/// The reader's own way through a sample finds what the JSON library finds.
void readHistorySample(std::string_view bytes) {
    HistorySampleParser parser;
    StoredHistorySample found;
    if (parser.parse(bytes, found) != HistorySampleParser::Result::sample) {
        return;
    }
    UsageHistorySample sample;
    fromJSON(parsedJSON(found.text), sample);
    require(found.provider == sample.provider.rawValue && found.windowID == sample.windowID &&
            Instant(Seconds(found.capturedAt)) == sample.capturedAt &&
            found.usedPercent == sample.usedPercent &&
            found.resetsAt.has_value() == sample.resetsAt.has_value() &&
            (!found.resetsAt || Instant(Seconds(*found.resetsAt)) == *sample.resetsAt));
    UsageHistorySample again;
    fromJSON(parsedJSON(serialized(toJSON(sample))), again);
    require(again == sample);
}

/// Read to its end, and reading on from there finds nothing more.
void readHistory(std::string_view bytes) {
    static const int descriptor = scratch().open("usage-history.json");
    Scratch::fill(descriptor, bytes);
    std::uint64_t visited = 0;
    const auto visit = [&visited](const StoredHistorySample&) { ++visited; };
    const HistoryFileScan scan = UsageHistoryReader::read(descriptor, visit);
    require(!scan.error && visited == scan.sampleCount && scan.samplesEnd <= bytes.size());
    if (scan.form == HistoryFileScan::Form::whole && scan.samplesEnd > 0) {
        const HistoryFileScan again = UsageHistoryReader::readOn(descriptor, scan, visit);
        require(visited == scan.sampleCount && again.sampleCount == visited &&
                again.form == HistoryFileScan::Form::whole && again.samplesEnd == scan.samplesEnd);
    }
}

/// Entries come back as they are written.
void readActivityLog(std::string_view bytes) {
    const TimeZone zone = TimeZone::utc();
    const Instant longAgo = readingTime - Seconds(1e10);
    std::vector<ActivityEntry> entries;
    ActivityLines::Reader(zone).read(bytes, longAgo, entries);
    for (const ActivityEntry& entry : entries) {
        const std::string record = ActivityLines::record(entry, zone);
        std::vector<ActivityEntry> again;
        ActivityLines::Reader(zone).read(record, longAgo, again);
        require(again.size() == 1 && ActivityLines::record(again.front(), zone) == record);
    }
}

void readNotices(std::string_view bytes) {
    const NoticeMemory memory = NoticeMemory::parse(bytes);
    require(NoticeMemory::parse(memory.text()) == memory);
}

// --- settings

class NoLoginItem final : public LoginItem {
public:
    State state() const override { return State::off; }
    std::string setEnabled(bool) override { return {}; }
    fs::path program() const override { return {}; }
    std::optional<fs::path> registeredProgram() const override { return std::nullopt; }
};

/// Every setting has a value and words for it, whatever stands in the file.
void readPreferences(std::string_view bytes) {
    static const Machine machine;
    const auto preferences = makePreferencesFile(scratch().write("preferences.json", bytes));
    LaunchAtLoginController launchAtLogin(*preferences, std::make_unique<NoLoginItem>());
    const SettingsCatalog catalog(*preferences, machine, launchAtLogin);
    for (const SettingItem& item : catalog.items()) {
        require(!catalog.value(item).empty() && !catalog.valueText(item, english()).empty());
    }
}

/// Keeps settings in memory.
class HeldPreferences final : public Preferences {
public:
    std::optional<bool> boolean(std::string_view key) const override { return get<bool>(key); }
    std::optional<double> number(std::string_view key) const override { return get<double>(key); }
    std::optional<std::string> string(std::string_view key) const override {
        return get<std::string>(key);
    }
    std::optional<std::vector<std::string>> strings(std::string_view key) const override {
        return get<std::vector<std::string>>(key);
    }
    void setBoolean(std::string_view key, bool value) override { put(key, value); }
    void setNumber(std::string_view key, double value) override { put(key, value); }
    void setString(std::string_view key, std::string value) override { put(key, std::move(value)); }
    void setStrings(std::string_view key, std::vector<std::string> value) override {
        put(key, std::move(value));
    }
    void setMember(std::string_view key, std::string_view member, bool isIn) override {
        auto list = strings(key).value_or(std::vector<std::string>());
        std::erase(list, member);
        if (isIn) {
            list.emplace_back(member);
        }
        put(key, std::move(list));
    }
    void remove(std::string_view key) override { values_.erase(std::string(key)); }
    void removeAll() { values_.clear(); }
    void reload() override {}
    std::optional<std::error_code> writeError() const override { return std::nullopt; }
    void retry() override {}

private:
    using Value = std::variant<bool, double, std::string, std::vector<std::string>>;

    template<typename Kind>
    std::optional<Kind> get(std::string_view key) const {
        const auto found = values_.find(std::string(key));
        const Kind* const value =
            found == values_.end() ? nullptr : std::get_if<Kind>(&found->second);
        return value ? std::optional(*value) : std::nullopt;
    }
    void put(std::string_view key, Value value) {
        values_.insert_or_assign(std::string(key), std::move(value));
    }

    std::map<std::string, Value> values_;
};

/// What the user types for a setting: every setting is tried, so no longer than somebody types.
void readSettings(std::string_view bytes) {
    constexpr std::size_t longestTyped = std::size_t{1} << 14;
    static const Machine machine;
    static HeldPreferences preferences;
    static LaunchAtLoginController launchAtLogin(preferences, std::make_unique<NoLoginItem>());
    static SettingsCatalog catalog(preferences, machine, launchAtLogin);
    preferences.removeAll();
    const std::string typed(bytes.substr(0, longestTyped));
    for (const SettingItem& item : catalog.items()) {
        // What was taken is kept as it was typed, or in the form in which it is listed.
        if (item.kind != SettingItem::Kind::executable && !catalog.set(item, typed)) {
            const std::string value = catalog.value(item);
            require(!value.empty() && !catalog.valueText(item, english()).empty());
            require(!catalog.set(item, value) && catalog.value(item) == value);
        }
    }
}

/// The status line is put into somebody's settings and taken out again: they are as they were.
void readClaudeSettings(std::string_view bytes) {
    try {
        const auto with = withStatusLine(bytes, "/usr/bin/vellmark");
        if (!with) {
            return;
        }
        require(!withStatusLine(*with, "/usr/bin/vellmark"));
        const auto without = withoutStatusLine(*with);
        require(without.has_value());
        changedLines(bytes, *with);
    } catch (const ClaudeSettingsFault&) {
    }
}

void readCatalogSource(std::string_view bytes) {
    try {
        readCatalog(bytes);
    } catch (const CatalogFault&) {
    }
}

// --- what leaves the machine

/// Redacting what is redacted changes nothing, and a text that comes in pieces is redacted alike.
void readForRedaction(std::string_view bytes) {
    const auto whole = redacted(bytes, home);
    require(whole.has_value());
    // Each check takes as long as the redaction itself.
    constexpr std::size_t longestChecked = std::size_t{1} << 16;
    if (bytes.size() > longestChecked) {
        return;
    }
    const auto marked = redactedWithPlaces(bytes, home);
    require(marked && marked->text == *whole);
    RedactionStream stream{std::string(home), {}};
    std::string pieces;
    constexpr std::size_t longestPiece = 1000;
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t size = std::min(bytes.size() / 3 + 1, longestPiece * (1 + at / 1000));
        const auto piece = stream.add(bytes.substr(at, size));
        require(piece.has_value());
        pieces += *piece;
        at += size;
    }
    pieces += stream.finish().value_or("");
    require(pieces == *whole);
    const std::string words = redactedWords(bytes, home);
    require(redactedWords(words, home) == words);
}

void readForReport(std::string_view bytes) {
    constexpr std::size_t longestLine = std::size_t{1} << 12;
    const std::string_view line = bytes.substr(0, longestLine);
    SupportReportInput input;
    input.agents = {{.name = "Codex",
                     .enabled = true,
                     .toolPath = std::string(line.substr(0, line.size() / 2)),
                     .toolVersion = std::string(line.substr(line.size() / 2)),
                     .loggedIn = true,
                     .lastSuccess = readingTime}};
    input.logText = bytes;
    input.whatHappened = line;
    const auto report = supportReport(input, home, false, english());
    require(report.has_value() && report->text.find(home) == std::string::npos);
}

constexpr ForeignReader readers[] = {
    {"activity-log", "words", readActivityLog},
    {"antigravity", "json", readAntigravity},
    {"catalog", "json", readCatalogSource},
    {"claude-query", "json", readClaudeQuery},
    {"claude-screen", "terminal", readClaudeScreen},
    {"claude-settings", "json", readClaudeSettings},
    {"codex", "json", readCodex},
    {"history", "json", readHistory},
    {"history-sample", "json", readHistorySample},
    {"last-readings", "json", readLastReadings},
    {"notices", "json", readNotices},
    {"preferences", "json", readPreferences},
    {"redaction", "words", readForRedaction},
    {"report", "words", readForReport},
    {"settings", "words", readSettings},
    {"snapshots", "json", readSnapshots},
    {"status-input", "json", readStatusInput},
    {"terminal", "terminal", readTerminal},
};

} // namespace

std::span<const ForeignReader> foreignReaders() {
    static const std::vector<ForeignReader> all = [] {
        std::vector<ForeignReader> joined = systemReaders();
        joined.insert(joined.end(), std::begin(readers), std::end(readers));
        std::ranges::sort(joined, {}, &ForeignReader::name);
        return joined;
    }();
    return all;
}

const ForeignReader* foreignReader(std::string_view name) {
    const auto all = foreignReaders();
    const auto found = std::ranges::find(all, name, &ForeignReader::name);
    return found == all.end() ? nullptr : &*found;
}

} // namespace vellmark
