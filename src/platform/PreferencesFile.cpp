#include "platform/PreferencesFile.h"

#include "platform/WholeFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>

namespace vellmark {

namespace fs = std::filesystem;

namespace {

using Document = nlohmann::ordered_json;

/// Another process (the terminal front end, the desktop application) may change the file at any
/// time, so a change is made to what the file holds at that moment, not to what was read at start.
class PreferencesFile final : public Preferences {
public:
    explicit PreferencesFile(fs::path file) : file_(std::move(file)) { reload(); }

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
    void remove(std::string_view key) override { change(key, std::nullopt); }

    std::optional<std::error_code> writeError() const override {
        return error_ ? std::optional(error_) : std::nullopt;
    }

private:
    const Document* find(std::string_view key) const {
        const auto found = document_.find(key);
        return found == document_.end() ? nullptr : &*found;
    }

    template<typename Value>
    void set(std::string_view key, Value value) {
        change(key, Document(std::move(value)));
    }

    void change(std::string_view key, std::optional<Document> value) {
        unsaved_.insert_or_assign(std::string(key), std::move(value));
        if (error_ = reload(); !error_) {
            error_ = replaceWholeFile(
                file_, document_.dump(2, ' ', false, Document::error_handler_t::replace) + "\n");
        }
        if (!error_) {
            unsaved_.clear();
        }
    }

    /// Takes over what the file holds, with the unsaved changes on top. A file that is there and
    /// cannot be read is an error: writing would destroy it unseen.
    std::error_code reload() {
        std::error_code error;
        const auto contents = readWholeFile(file_, error);
        if (contents) {
            Document read = Document::parse(*contents, nullptr, false);
            if (read.is_object()) {
                document_ = std::move(read);
            } else {
                error = keepAside();
            }
        } else if (error == std::errc::no_such_file_or_directory) {
            error.clear();
        }
        for (const auto& [key, value] : unsaved_) {
            if (value) {
                document_[key] = *value;
            } else {
                document_.erase(key);
            }
        }
        return error;
    }

    std::error_code keepAside() const {
        fs::path aside = file_;
        aside.replace_filename("preferences.damaged.json");
        std::error_code error;
        fs::rename(file_, aside, error);
        return error;
    }

    fs::path file_;
    Document document_ = Document::object();
    /// Changes that are not on disk yet; an absent value is a removal.
    std::map<std::string, std::optional<Document>> unsaved_;
    std::error_code error_;
};

} // namespace

std::unique_ptr<Preferences> makePreferencesFile(const fs::path& file) {
    return std::make_unique<PreferencesFile>(file);
}

} // namespace vellmark
