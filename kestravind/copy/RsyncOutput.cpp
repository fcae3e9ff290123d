#include "copy/RsyncOutput.h"

namespace Velmora::Daemon::Copy::RsyncOutput {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

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
