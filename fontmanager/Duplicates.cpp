#include "fontmanager/Duplicates.h"

#include <map>
#include <set>

namespace Vellumine {

namespace {

template <typename Value>
bool allEqual(const DuplicateGroup& group, const std::function<Value(std::size_t)>& value) {
    std::set<Value> values;
    for (std::size_t i = 0; i < group.faces.size(); ++i) {
        values.insert(value(i));
    }
    return values.size() <= 1;
}

std::vector<std::string> differences(const DuplicateGroup& group) {
    std::vector<std::string> found;
    if (!allEqual<std::string>(group, [&](std::size_t i) { return group.details[i].version; })) {
        found.emplace_back("version");
    }
    if (!allEqual<std::string>(group, [&](std::size_t i) {
            return std::string(wireText(group.faces[i].type)) + group.details[i].format;
        })) {
        found.emplace_back("format");
    }
    if (!allEqual<std::string>(group,
                               [&](std::size_t i) { return group.faces[i].file.string(); })) {
        found.emplace_back("file");
    }
    return found;
}

} // namespace

std::vector<DuplicateGroup> findDuplicates(const std::vector<FaceRecord>& faces,
                                           const DetailsReader& read) {
    std::map<std::string, std::vector<const FaceRecord*>> byName;
    for (const auto& face : faces) {
        byName[face.postScriptName].push_back(&face);
    }
    std::vector<DuplicateGroup> groups;
    for (const auto& [name, members] : byName) {
        if (members.size() < 2) {
            continue;
        }
        DuplicateGroup group{name, {}, {}, {}};
        for (const FaceRecord* face : members) {
            group.faces.push_back(*face);
            group.details.push_back(read ? read(*face)
                                         : readFaceDetails(face->file, face->faceIndex));
        }
        group.differences = differences(group);
        groups.push_back(std::move(group));
    }
    return groups;
}

} // namespace Vellumine
