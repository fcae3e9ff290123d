#include "copy/CopyRules.h"

#include "copy/CopyLog.h"

#include <cctype>

namespace Velmora::Daemon::Copy::CopyRules {

namespace {

bool isSeparator(char c) { return c == '/' || c == '\\'; }

// A name as an rsync wildcard pattern: letters match either case, wildcard characters stand for
// themselves. A line break cannot stand in a filter file, so it becomes "?" (any one character).
std::string pattern(const std::string& name)
{
    std::string result;
    result.reserve(name.size() * 2);
    for (const char c : name) {
        const unsigned char u = static_cast<unsigned char>(c);
        if (u < 128 && std::isalpha(u)) {
            result += '[';
            result += static_cast<char>(std::tolower(u));
            result += static_cast<char>(std::toupper(u));
            result += ']';
        } else if (c == '*' || c == '?' || c == '[') {
            result += '\\';
            result += c;
        } else if (c == '\n' || c == '\r') {
            result += '?';
        } else {
            result += c;
        }
    }
    return result;
}

std::string anchored(const std::vector<std::string>& components, size_t count)
{
    std::string result;
    for (size_t i = 0; i < count; ++i)
        result += '/' + pattern(components[i]);
    return result;
}

std::optional<std::string> normalizedExtension(std::string extension)
{
    while (!extension.empty() && std::isspace(static_cast<unsigned char>(extension.back())))
        extension.pop_back();
    size_t start = 0;
    while (start < extension.size() && std::isspace(static_cast<unsigned char>(extension[start])))
        ++start;
    extension.erase(0, start);
    if (!extension.empty() && extension.front() == '*')
        extension.erase(0, 1);
    if (extension.empty() || extension.find_first_of("/\\") != std::string::npos)
        return std::nullopt;
    if (extension.front() != '.')
        extension.insert(extension.begin(), '.');
    return extension;
}

} // namespace

std::optional<std::vector<std::string>> components(const std::string& programPath, const std::string& volumeRoot)
{
    std::string root = volumeRoot;
    while (root.size() > 1 && isSeparator(root.back()))
        root.pop_back();
    if (programPath.compare(0, root.size(), root) != 0)
        return std::nullopt;
    size_t start = root.size();
    if (root.size() > 1 && start < programPath.size() && !isSeparator(programPath[start]))
        return std::nullopt;

    std::vector<std::string> result;
    while (start < programPath.size()) {
        size_t end = start;
        while (end < programPath.size() && !isSeparator(programPath[end]))
            ++end;
        const std::string name = programPath.substr(start, end - start);
        if (name == "..") {
            if (result.empty())
                return std::nullopt;
            result.pop_back();
        } else if (!name.empty() && name != "." && name.find('\0') == std::string::npos) {
            result.push_back(name);
        }
        start = end + 1;
    }
    return result;
}

std::string programPath(const std::string& volumeRoot, const std::string& relative)
{
    std::string result = volumeRoot;
    size_t start = 0;
    while (start <= relative.size()) {
        size_t end = relative.find('/', start);
        if (end == std::string::npos)
            end = relative.size();
        if (end > start)
            result += '\\' + relative.substr(start, end - start);
        start = end + 1;
    }
    return result;
}

std::string filterText(const Velmora::Message::MigrationFilter& filter, const std::string& volumeRoot)
{
    std::string text;
    const auto located = [&](const std::string& path) {
        auto names = components(path, volumeRoot);
        if (!names)
            qCWarning(copyLog, "Filter path %s is not on the copied volume %s; ignored", path.c_str(), volumeRoot.c_str());
        return names;
    };

    // rsync takes the first rule that matches, so what is kept comes first. The folders above a
    // kept path are taken in on their own, so that a left-out folder around it still lets it through.
    for (const std::string& path : filter.systempaths()) {
        const auto names = located(path);
        if (!names)
            continue;
        if (names->empty()) {
            text += "+ *\n";
            continue;
        }
        for (size_t depth = 1; depth < names->size(); ++depth)
            text += "+ " + anchored(*names, depth) + "/\n";
        const std::string self = anchored(*names, names->size());
        text += "+ " + self + "\n+ " + self + "/***\n";
    }
    for (const std::string& path : filter.paths()) {
        const auto names = located(path);
        if (!names)
            continue;
        if (names->empty()) {
            text += "- *\n";
            continue;
        }
        const std::string self = anchored(*names, names->size());
        text += "- " + self + "\n- " + self + "/***\n";
    }
    // An extension takes files only: a folder named "holiday.mp4" is kept with what it holds.
    std::string extensions;
    for (const std::string& extension : filter.extensions()) {
        if (const auto normalized = normalizedExtension(extension))
            extensions += "- *" + pattern(*normalized) + "\n";
    }
    if (!extensions.empty())
        text += "+ */\n" + extensions;
    return text;
}

} // namespace Velmora::Daemon::Copy::CopyRules
