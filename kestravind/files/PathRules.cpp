#include "files/PathRules.h"

namespace Velmora::Daemon::Files {

namespace {

char foldAscii(char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; }

std::string trimmed(std::string_view text)
{
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    size_t begin = 0;
    size_t end = text.size();
    while (begin < end && blank(text[begin]))
        ++begin;
    while (end > begin && blank(text[end - 1]))
        --end;
    return std::string(text.substr(begin, end - begin));
}

} // namespace

PathRules::PathRules(int defaultBucket)
    : m_nodes(1)
    , m_defaultBucket(defaultBucket)
{
}

std::vector<std::string> PathRules::splitList(const std::string& text)
{
    std::vector<std::string> items;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find(',', start);
        if (end == std::string::npos)
            end = text.size();
        std::string item = trimmed(std::string_view(text).substr(start, end - start));
        if (!item.empty())
            items.push_back(std::move(item));
        start = end + 1;
    }
    return items;
}

const std::string& PathRules::folded(std::string_view text) const
{
    m_scratch.assign(text.data(), text.size());
    for (char& c : m_scratch)
        c = foldAscii(c);
    return m_scratch;
}

void PathRules::addPath(const std::vector<std::string>& components, int bucket, int priority)
{
    size_t node = 0;
    for (const std::string& name : components) {
        const std::string key = folded(name);
        auto found = m_nodes[node].children.find(key);
        if (found == m_nodes[node].children.end()) {
            m_nodes.emplace_back();
            found = m_nodes[node].children.emplace(key, int(m_nodes.size() - 1)).first;
        }
        node = size_t(found->second);
    }
    Match& match = m_nodes[node].match;
    if (priority < match.priority)
        match = {bucket, priority};
}

void PathRules::addExtension(std::string_view extension, int bucket, int priority)
{
    std::string normal = trimmed(extension);
    if (!normal.empty() && normal.front() == '*')
        normal.erase(0, 1);
    if (normal.empty())
        return;
    if (normal.front() != '.')
        normal.insert(0, 1, '.');
    const std::string key = folded(normal);
    auto inserted = m_extensions.emplace(key, Match {bucket, priority});
    if (!inserted.second && priority < inserted.first->second.priority)
        inserted.first->second = {bucket, priority};
    m_longestExtension = std::max(m_longestExtension, key.size());
}

int PathRules::child(int node, std::string_view name) const
{
    if (node == NoNode || m_nodes[size_t(node)].children.empty())
        return NoNode;
    const auto& children = m_nodes[size_t(node)].children;
    const auto found = children.find(folded(name));
    return found == children.end() ? NoNode : found->second;
}

int PathRules::bucketOf(std::string_view name, const Match& inherited) const
{
    if (inherited.bucket != NoBucket)
        return inherited.bucket;
    if (m_extensions.empty())
        return m_defaultBucket;
    // Every suffix that starts at a dot is an extension the rules may name (".tar.gz" and ".gz").
    Match best;
    size_t dot = name.rfind('.');
    while (dot != std::string_view::npos && name.size() - dot <= m_longestExtension) {
        const auto found = m_extensions.find(folded(name.substr(dot)));
        if (found != m_extensions.end() && found->second.priority < best.priority)
            best = found->second;
        dot = dot == 0 ? std::string_view::npos : name.rfind('.', dot - 1);
    }
    return best.bucket != NoBucket ? best.bucket : m_defaultBucket;
}

} // namespace Velmora::Daemon::Files
