// The drawing that everything is measured on: as many block references as wanted, each with five attributes.
//
// Four blocks are referenced in turn, on several layers, turned and scaled. Their definitions no longer match the
// references: the tags stand in another order, one is new, and one of each reference's is gone; so synchronizing has
// all its work to do for each reference. The file is ASCII DXF of version 2018 with about 1,000 bytes a reference.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace bench {

inline constexpr std::size_t kAttributesPerReference = 5;
inline constexpr std::array<const char*, 4> kBlockNames = {"DOOR", "WINDOW", "DESK", "VALVE"};

/// Hands the drawing to `sink` piece by piece; the same number gives the same bytes.
void makeDrawing(std::size_t references, const std::function<void(std::string_view)>& sink);
std::string makeDrawing(std::size_t references);

}  // namespace bench
