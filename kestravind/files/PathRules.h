#pragma once

#include <climits>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Velmora::Daemon::Files {

// Sorts the files of a walk into buckets by the rules of a request: a path rule takes a file or
// a whole folder, an extension rule a file by the end of its name, and what no rule takes falls
// into the default bucket. Path rules win over extension rules; among path rules, and among
// extension rules, the lower priority wins. Names compare without regard to ASCII case, as the
// program compares them.
//
// Path rules form a tree of names, so that a walk carries one node per folder and asks it only
// about the entries of folders that a rule reaches into.
class PathRules
{
public:
    static constexpr int NoNode = -1;
    static constexpr int NoBucket = -1;

    struct Match {
        int bucket = NoBucket;
        int priority = INT_MAX;
    };

    explicit PathRules(int defaultBucket);

    void addPath(const std::vector<std::string>& components, int bucket, int priority);
    // ".mp3", "mp3" and "*.MP3" are one extension.
    void addExtension(std::string_view extension, int bucket, int priority);

    // Splits one of the request's comma-separated lists, dropping blanks and empty items.
    static std::vector<std::string> splitList(const std::string& text);

    int root() const { return m_nodes.size() > 1 || m_nodes[0].match.bucket != NoBucket ? 0 : NoNode; }
    // The node of `name` below `node`, or NoNode; `node` may be NoNode.
    int child(int node, std::string_view name) const;
    // The path rule that ends at `node`, if any.
    Match pathMatch(int node) const { return node == NoNode ? Match() : m_nodes[size_t(node)].match; }
    bool hasChildren(int node) const { return node != NoNode && !m_nodes[size_t(node)].children.empty(); }

    // The bucket of a file named `name` in a folder whose path rules gave `inherited`.
    int bucketOf(std::string_view name, const Match& inherited) const;

private:
    struct Node {
        std::unordered_map<std::string, int> children;
        Match match;
    };

    const std::string& folded(std::string_view text) const;

    std::vector<Node> m_nodes;
    std::unordered_map<std::string, Match> m_extensions;
    size_t m_longestExtension = 0;
    int m_defaultBucket;
    mutable std::string m_scratch; // the one buffer that folding reuses, so a lookup allocates nothing
};

} // namespace Velmora::Daemon::Files
