// A project with one of everything, as bytes in the layout of any version.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

// Versions of the classes that have had more than one, by class name.
using Versions = std::map<std::string, int>;
const Versions& CurrentVersions();

// Beside its versions, what one project may have and another not.
struct SSampleForm {
    bool narrowText = false;
    bool nullHolders = false; // no object names the one that holds it
    std::string mainFile = "D:\\data\\a.tarin";
};

// The project in the layout `layout`. Members that are younger than `content` have their default: what a load
// of an older file gives them.
std::vector<std::uint8_t> WriteSampleProject(const Versions& layout, const Versions& content,
                                             const SSampleForm& form = {});
