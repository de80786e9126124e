#include "torvelhost/plot/display_list.h"

namespace host {

void DisplayList::setStyle(const Style& style) {
    if (styles_.empty() || !(styles_.back() == style)) styles_.push_back(style);
}

void DisplayList::begin(Kind kind) {
    items_.push_back(
        {kind, static_cast<std::uint32_t>(styles_.size() - 1), static_cast<std::uint32_t>(contourEnds_.size()), 0});
}

void DisplayList::endContour() {
    const auto end = static_cast<std::uint32_t>(points_.size());
    if (end != (contourEnds_.empty() ? 0 : contourEnds_.back())) contourEnds_.push_back(end);
}

void DisplayList::end() {
    endContour();
    Item& item = items_.back();
    item.count = static_cast<std::uint32_t>(contourEnds_.size()) - item.first;
    if (item.count == 0) items_.pop_back();
}

void DisplayList::add(Kind kind, std::span<const OdGePoint3d> contour) {
    begin(kind);
    points_.insert(points_.end(), contour.begin(), contour.end());
    end();
}

void DisplayList::setInk(std::span<const double> lengths) {
    const Item tint = items_.back();
    items_.pop_back();
    for (const double length : lengths) items_.push_back({tint.kind, tint.style, tint.first, tint.count, length});
}

void DisplayList::addText(Text text) {
    items_.push_back(
        {Kind::kText, static_cast<std::uint32_t>(styles_.size() - 1), static_cast<std::uint32_t>(texts_.size()), 0});
    texts_.push_back(std::move(text));
}

void DisplayList::addImage(Image image) {
    items_.push_back(
        {Kind::kImage, static_cast<std::uint32_t>(styles_.size() - 1), static_cast<std::uint32_t>(images_.size()), 0});
    images_.push_back(std::move(image));
}

std::size_t DisplayList::addReference(const Reference& reference) {
    items_.push_back({Kind::kReference, static_cast<std::uint32_t>(styles_.size() - 1),
                      static_cast<std::uint32_t>(references_.size()), 0});
    references_.push_back(reference);
    return references_.size() - 1;
}

void DisplayList::endAttributes(std::size_t reference) {
    std::size_t item = items_.size();
    while (items_[item - 1].kind != Kind::kReference || items_[item - 1].first != reference) --item;
    references_[reference].attributes = static_cast<std::uint32_t>(items_.size() - item);
}

void DisplayList::clear() {
    items_.clear();
    styles_.clear();
    points_.clear();
    contourEnds_.clear();
    texts_.clear();
    images_.clear();
    references_.clear();
}

std::span<const OdGePoint3d> DisplayList::contour(std::size_t index) const {
    const std::size_t begin = index == 0 ? 0 : contourEnds_[index - 1];
    return std::span(points_).subspan(begin, contourEnds_[index] - begin);
}

std::size_t DisplayList::bytes() const {
    return items_.capacity() * sizeof(Item) + styles_.capacity() * sizeof(Style) +
           points_.capacity() * sizeof(OdGePoint3d) + contourEnds_.capacity() * sizeof(std::uint32_t) +
           texts_.capacity() * sizeof(Text) + images_.capacity() * sizeof(Image) +
           references_.capacity() * sizeof(Reference);
}

OdGeExtents3d DisplayList::box() const {
    OdGeExtents3d box;
    for (const Item& item : items_) {
        if (item.kind == Kind::kReference || item.kind == Kind::kRay || item.kind == Kind::kInfiniteLine) continue;
        for (std::size_t i = 0; i < item.count; ++i)
            for (const OdGePoint3d& point : contour(item.first + i)) box.addPoint(point);
    }
    return box;
}

}  // namespace host
