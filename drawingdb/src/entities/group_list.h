// The groups of a record, with new values for some of them: what entities are changed by that have no class.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "drawingdb/ge.h"
#include "drawingdb/src/file/groups.h"

namespace drawingdb {

class GroupList {
  public:
    /// The record's bytes must live as long as the list.
    GroupList(std::string_view record, const FileFormat& format) : format_(format) {
        GroupCursor cursor(record, format);
        for (Group group; cursor.next(group);) items_.push_back({group, {}, {}, {}});
        end_ = size();
        for (std::size_t i = 0; i < size() && end_ == size(); ++i)
            if (code(i) >= 1000) end_ = i;
    }

    std::size_t size() const { return items_.size(); }
    /// Where extended data begins, of which nothing is changed here.
    std::size_t end() const { return end_; }
    int code(std::size_t i) const { return i < size() ? items_[i].group.code : -1; }
    std::string_view value(std::size_t i) const { return items_[i].group.value; }
    double real(std::size_t i) const {
        return items_[i].real ? *items_[i].real : groupReal(items_[i].group, format_.binary).value_or(0);
    }
    std::int64_t integer(std::size_t i) const { return groupInteger(items_[i].group, format_.binary).value_or(0); }
    /// What stays as it was keeps its digits.
    void setReal(std::size_t i, double value) {
        if (value != real(i)) items_[i].real = value;
    }
    void setInteger(std::size_t i, std::int64_t value) { items_[i].integer = value; }
    /// In the file's encoding.
    void setText(std::size_t i, std::string value) { items_[i].text = std::move(value); }

    /// The first group with the code from `from` on and before `to`; else `to`.
    std::size_t find(int wanted, std::size_t from, std::size_t to) const {
        while (from < to && code(from) != wanted) ++from;
        return from;
    }
    std::size_t find(int wanted, std::size_t from = 0) const { return find(wanted, from, end_); }
    /// Where the zone of a marker ends; end() in a record without it.
    std::size_t endOfZone(std::string_view marker) const {
        std::size_t begin = find(100);
        while (begin < end_ && value(begin) != marker) begin = find(100, begin + 1);
        return begin < end_ ? find(100, begin + 1) : end_;
    }

    /// The point that begins at a group; parts that do not stand behind it are 0.
    OdGePoint3d point(std::size_t i) const {
        const bool y = i + 1 < end_ && code(i + 1) == code(i) + 10;
        const bool z = y && i + 2 < end_ && code(i + 2) == code(i) + 20;
        return {real(i), y ? real(i + 1) : 0, z ? real(i + 2) : 0};
    }
    void setPoint(std::size_t i, const OdGePoint3d& p) {
        const int first = code(i);
        setReal(i, p.x);
        if (i + 1 >= end_ || code(i + 1) != first + 10) return;
        setReal(i + 1, p.y);
        if (i + 2 < end_ && code(i + 2) == first + 20) setReal(i + 2, p.z);
    }

    OdGeVector3d normal() const {
        const std::size_t i = find(210);
        return i < end_ ? point(i).asVector() : OdGeVector3d::kZAxis;
    }
    /// Sets the extrusion direction, which comes before the group `place` when it is new.
    void setNormal(const OdGeVector3d& normal, std::size_t place) {
        const std::size_t i = find(210);
        if (i < end_)
            setPoint(i, OdGePoint3d() + normal);
        else if (normal != OdGeVector3d::kZAxis)
            added_.insert(added_.end(), {{place, 210, normal.x}, {place, 220, normal.y}, {place, 230, normal.z}});
    }

    /// The value of a group that may be left out, and setting it: it comes before the group `place` when it is new.
    double realOr(int wanted, double fallback) const {
        const std::size_t i = find(wanted);
        return i < end_ ? real(i) : fallback;
    }
    void setOrAdd(int wanted, double value, double fallback, std::size_t place) {
        const std::size_t i = find(wanted);
        if (i < end_)
            setReal(i, value);
        else if (value != fallback)
            added_.push_back({place, wanted, value});
    }

    std::string_view bytes(std::size_t i) const { return items_[i].group.bytes(); }
    std::string bytes() const {
        std::string out;
        GroupWriter writer(out, format_);
        for (std::size_t i = 0; i <= size(); ++i) {
            for (const Addition& addition : added_)
                if (addition.place == i) writer.real(addition.code, addition.value);
            if (i == size()) break;
            const Item& item = items_[i];
            if (item.real)
                writer.real(item.group.code, *item.real);
            else if (item.integer)
                writer.integer(item.group.code, *item.integer);
            else if (item.text)
                writer.text(item.group.code, *item.text);
            else
                writer.raw(item.group.bytes());
        }
        return out;
    }

  private:
    struct Item {
        Group group;
        std::optional<double> real;
        std::optional<std::int64_t> integer;
        std::optional<std::string> text;
    };
    struct Addition {
        std::size_t place;
        int code;
        double value;
    };
    const FileFormat& format_;
    std::vector<Item> items_;
    std::size_t end_ = 0;
    std::vector<Addition> added_;
};

}  // namespace drawingdb
