#include "text/SystemErrorText.h"

#include "text/TerminalText.h"

#include <array>
#include <filesystem>
#include <string_view>
#include <utility>

namespace vellmark {
namespace {

constexpr std::array<std::pair<std::errc, std::string_view>, 18> keys{{
    {std::errc::bad_file_descriptor, "system.badDescriptor"},
    {std::errc::device_or_resource_busy, "system.busy"},
    {std::errc::permission_denied, "system.denied"},
    {std::errc::operation_not_permitted, "system.denied"},
    {std::errc::is_a_directory, "system.isDirectory"},
    {std::errc::too_many_symbolic_link_levels, "system.loop"},
    {std::errc::no_such_file_or_directory, "system.missing"},
    {std::errc::filename_too_long, "system.nameTooLong"},
    {std::errc::not_a_directory, "system.noDirectory"},
    {std::errc::not_enough_memory, "system.noMemory"},
    {std::errc::resource_unavailable_try_again, "system.unavailable"},
    {std::errc::no_space_on_device, "system.noSpace"},
    {std::errc::executable_format_error, "system.notExecutable"},
    {std::errc::read_only_file_system, "system.readOnly"},
    {std::errc::file_too_large, "system.tooLarge"},
    {std::errc::too_many_files_open, "system.tooManyFiles"},
    {std::errc::too_many_files_open_in_system, "system.tooManyFiles"},
    {std::errc::io_error, "system.transfer"},
}};

} // namespace

std::string systemErrorText(std::error_code error, const Localization& words) {
    for (const auto& [condition, key] : keys) {
        if (error == condition) {
            return words.text(key);
        }
    }
    return words.format("system.other", {singleLine(error.message())});
}

std::string systemReasonText(std::string_view reason, const Localization& words) {
    const std::size_t colon = reason.rfind(": ");
    const std::size_t start = colon == std::string_view::npos ? 0 : colon + 2;
    for (const auto& [condition, key] : keys) {
        if (reason.substr(start) == std::make_error_code(condition).message()) {
            return singleLine(reason.substr(0, start)) + words.text(key);
        }
    }
    return words.format("system.other", {singleLine(reason)});
}

std::string faultText(const std::exception& fault, const Localization& words) {
    if (const auto* file = dynamic_cast<const std::filesystem::filesystem_error*>(&fault)) {
        return singleLine(file->path1().string()) + ": " + systemErrorText(file->code(), words);
    }
    const auto* error = dynamic_cast<const std::system_error*>(&fault);
    if (error == nullptr) {
        return singleLine(fault.what());
    }
    // Without a thread or a process left there is nothing else to name; others name a file.
    return error->code() == std::errc::resource_unavailable_try_again
               ? systemErrorText(error->code(), words)
               : systemReasonText(fault.what(), words);
}

} // namespace vellmark
