#include "copy/RsyncOutput.h"

namespace Velmora::Daemon::Copy::RsyncOutput {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Reads digits from `pos`, skipping the thousands separators rsync may print.
std::optional<uint64_t> number(std::string_view text, size_t& pos)
{
    const size_t start = pos;
    uint64_t value = 0;
    while (pos < text.size() && (isDigit(text[pos]) || ((text[pos] == ',' || text[pos] == '.') && pos > start))) {
        if (isDigit(text[pos])) {
            if (value > (UINT64_MAX - 9) / 10)
                return std::nullopt;
            value = value * 10 + uint64_t(text[pos] - '0');
        }
        ++pos;
    }
    if (pos == start)
        return std::nullopt;
    return value;
}

// rsync writes bytes it won't print as "\#ooo".
std::string unescaped(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 4 < text.size() && text[i + 1] == '#' && isDigit(text[i + 2]) && isDigit(text[i + 3]) && isDigit(text[i + 4])) {
            result += char((text[i + 2] - '0') * 64 + (text[i + 3] - '0') * 8 + (text[i + 4] - '0'));
            i += 4;
        } else {
            result += text[i];
        }
    }
    return result;
}

} // namespace

std::optional<Progress> parseProgress(std::string_view line)
{
    size_t pos = line.find_first_not_of(' ');
    if (pos == std::string_view::npos)
        return std::nullopt;
    const auto bytes = number(line, pos);
    if (!bytes || pos >= line.size() || line[pos] != ' ')
        return std::nullopt;
    Progress progress;
    progress.bytes = *bytes;
    size_t chk = line.find("-chk=", pos);
    if (chk != std::string_view::npos) {
        size_t at = chk + 5;
        const auto remaining = number(line, at);
        if (remaining && at < line.size() && line[at] == '/') {
            ++at;
            if (const auto total = number(line, at); total && *total >= *remaining) {
                progress.totalEntries = *total;
                progress.checkedEntries = *total - *remaining;
            }
        }
    }
    return progress;
}

std::optional<Fault> parseFault(std::string_view line, std::string_view sourceRoot)
{
    if (line.substr(0, 7) != "rsync: " || line.find("vanished") != std::string_view::npos)
        return std::nullopt;
    const size_t open = line.find('"');
    const size_t close = line.rfind('"');
    if (open == std::string_view::npos || close <= open)
        return std::nullopt;
    const std::string path = unescaped(line.substr(open + 1, close - open - 1));
    if (path.size() <= sourceRoot.size() + 1 || path.compare(0, sourceRoot.size(), sourceRoot) != 0
        || path[sourceRoot.size()] != '/')
        return std::nullopt;
    Fault fault;
    fault.relativePath = path.substr(sourceRoot.size() + 1);
    while (!fault.relativePath.empty() && fault.relativePath.back() == '/')
        fault.relativePath.pop_back();
    if (fault.relativePath.empty())
        return std::nullopt;
    const std::string_view before = line.substr(0, open);
    fault.directory = before.find("opendir") != std::string_view::npos || before.find("readdir") != std::string_view::npos;
    return fault;
}

} // namespace Velmora::Daemon::Copy::RsyncOutput
