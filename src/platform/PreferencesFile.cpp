#include "platform/PreferencesFile.h"

#include "platform/FileLock.h"
#include "platform/WaitingFile.h"
#include "platform/WholeFile.h"
#include "text/BoundedJSON.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace vellmark {

namespace fs = std::filesystem;

namespace {

using Document = JSON;

/// Absent when `text` is no JSON object, or one that cannot be a preferences file.
std::optional<Document> objectIn(std::string_view text) {
    try {
        Document document = parsedJSON(text);
        return document.is_object() ? std::optional(std::move(document)) : std::nullopt;
    } catch (const JSONDecodingError&) {
        return std::nullopt;
    }
}

/// A click never waits longer than this.
constexpr FileLock::Seconds lockPatience{0.2};
constexpr std::size_t mostBytes = std::size_t{16} << 20;

/// Another process (the terminal front end, the desktop application) may change the file at any
/// time, so a change is made to what the file holds at that moment, not to what was read at start,
/// under a lock. If somebody holds on to the lock, the change waits on disk beside the file.
class PreferencesFile final : public Preferences {
public:
    PreferencesFile(fs::path file, std::function<void()> written)
        : file_(std::move(file)), lock_(fs::path(file_).replace_extension(".lock"), lockPatience),
          waiting_(file_), written_(std::move(written)) {
        error_ = read();
    }

    std::optional<bool> boolean(std::string_view key) const override {
        const Document* value = find(key);
        return value && value->is_boolean() ? std::optional(value->get<bool>()) : std::nullopt;
    }

    std::optional<double> number(std::string_view key) const override {
        const Document* value = find(key);
        return value && value->is_number() ? std::optional(value->get<double>()) : std::nullopt;
    }

    std::optional<std::string> string(std::string_view key) const override {
        const Document* value = find(key);
        return value && value->is_string() ? std::optional(value->get<std::string>())
                                           : std::nullopt;
    }

    std::optional<std::vector<std::string>> strings(std::string_view key) const override {
        const Document* value = find(key);
        const auto isString = [](const Document& element) { return element.is_string(); };
        if (!value || !value->is_array() || !std::all_of(value->begin(), value->end(), isString)) {
            return std::nullopt;
        }
        return value->get<std::vector<std::string>>();
    }

    void setBoolean(std::string_view key, bool value) override { set(key, value); }
    void setNumber(std::string_view key, double value) override { set(key, value); }
    void setString(std::string_view key, std::string value) override { set(key, std::move(value)); }
    void setStrings(std::string_view key, std::vector<std::string> value) override {
        set(key, std::move(value));
    }
    void setMember(std::string_view key, std::string_view member, bool isIn) override {
        change({key, member, isIn});
    }
    void remove(std::string_view key) override { change(Document::array({key})); }

    void reload() override {
        const std::error_code error = read();
        error_ = unsaved_.empty() ? error : error_;
    }

    std::optional<std::error_code> writeError() const override {
        return error_ ? std::optional(error_) : std::nullopt;
    }

    void retry() override {
        if (!unsaved_.empty()) {
            save();
        } else if (error_) {
            error_ = read();
        }
    }

private:
    const Document* find(std::string_view key) const {
        const auto found = document_.find(key);
        return found == document_.end() ? nullptr : &*found;
    }

    template<typename Value>
    void set(std::string_view key, Value value) {
        change({key, Document(std::move(value))});
    }

    /// A change is an array: the key and its value; the key alone to remove it; or the key, a
    /// member of its list, and whether that is to be in it.
    void change(Document change) {
        // A whole value overrides the earlier changes of its key.
        if (change.size() < 3) {
            std::erase_if(unsaved_, [&](const Document& earlier) {
                return earlier.front() == change.front();
            });
        }
        unsaved_.push_back(std::move(change));
        save();
    }

    void save() {
        std::error_code refusal;
        const auto held = lock_.acquire(refusal);
        error_ = read();
        if (!held) {
            const bool isBusy = refusal == std::errc::resource_unavailable_try_again;
            error_ = isBusy ? waiting_.add(unsavedLines()) : refusal;
        } else if (!error_) {
            error_ = write();
        }
        if (!error_) {
            unsaved_.clear();
            if (written_) {
                written_();
            }
        }
    }

    /// Includes the changes that wait on disk, which are then done with. If those cannot be read
    /// now, the new ones queue up behind them: applied later, the older ones would undo the newer.
    std::error_code write() {
        std::error_code error;
        bool isWritten = false;
        const bool isNoneLeft = waiting_.takeOver([&](std::string_view lines) {
            applyLines(lines);
            applyUnsaved();
            error = replaceWholeFile(file_, serialized(document_) + "\n");
            isWritten = true;
            return !error;
        });
        if (isWritten) {
            return error;
        }
        return isNoneLeft ? replaceWholeFile(file_, serialized(document_) + "\n")
                          : waiting_.add(unsavedLines());
    }

    /// Takes over what the file holds, with the waiting changes on top. A file that exists but
    /// cannot be read is an error: writing would destroy it unseen.
    std::error_code read() {
        std::error_code error;
        // Before the file: whoever takes the lines over writes the file first and then removes
        // them.
        const std::string waiting = waiting_.lines();
        const auto contents = readRegularFile(file_, mostBytes, error);
        if (contents) {
            if (auto read = objectIn(*contents)) {
                document_ = std::move(*read);
            } else {
                error = keepAside();
            }
        } else if (error == std::errc::no_such_file_or_directory) {
            error.clear();
        }
        applyLines(waiting);
        applyUnsaved();
        return error;
    }

    void apply(const Document& change) {
        if (!change.is_array() || change.empty() || !change.front().is_string()) {
            return;
        }
        const auto key = change.front().get<std::string>();
        if (change.size() == 1) {
            document_.erase(key);
        } else if (change.size() == 2) {
            document_[key] = change[1];
        } else if (change[2].is_boolean()) {
            applyMember(key, change[1], change[2].get<bool>());
        }
    }

    void applyMember(const std::string& key, const Document& member, bool isIn) {
        Document& list = document_[key];
        if (!list.is_array()) {
            list = Document::array();
        }
        const auto found = std::find(list.begin(), list.end(), member);
        if (isIn && found == list.end()) {
            list.push_back(member);
        } else if (!isIn && found != list.end()) {
            list.erase(found);
        }
    }

    void applyUnsaved() {
        std::ranges::for_each(unsaved_, [&](const auto& each) { apply(each); });
    }

    /// A change that waits is a line.
    std::string unsavedLines() const {
        std::string lines;
        for (const Document& change : unsaved_) {
            lines += serialized(change, -1) + "\n";
        }
        return lines;
    }

    void applyLines(std::string_view lines) {
        while (!lines.empty()) {
            const auto end = std::min(lines.find('\n'), lines.size());
            apply(Document::parse(lines.substr(0, end), nullptr, false));
            lines.remove_prefix(std::min(end + 1, lines.size()));
        }
    }

    std::error_code keepAside() const {
        fs::path aside = file_;
        aside.replace_filename("preferences.damaged.json");
        std::error_code error;
        fs::rename(file_, aside, error);
        return error;
    }

    fs::path file_;
    LockFile lock_;
    WaitingFile waiting_;
    Document document_ = Document::object();
    /// Changes that are not on disk yet, oldest first.
    std::vector<Document> unsaved_;
    std::function<void()> written_;
    std::error_code error_;
};

} // namespace

std::unique_ptr<Preferences> makePreferencesFile(const fs::path& file,
                                                 std::function<void()> written) {
    return std::make_unique<PreferencesFile>(file, std::move(written));
}

} // namespace vellmark
