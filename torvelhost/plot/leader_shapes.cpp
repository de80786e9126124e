// Leaders of both kinds, and multiple lines.
#include "drawingdb/mtext.h"
#include "torvelhost/plot/shapes.h"

namespace host {
void Shapes::addLeaderParts(const drawingdb::LeaderParts& parts) {
    if (parts.line.size() < 2) return;
    if (!parts.head.empty()) list_.add(DisplayList::Kind::kArea, parts.head);
    if (parts.curve)
        addCurve(*parts.curve);
    else
        list_.add(DisplayList::Kind::kPolyline, parts.line);
}

//   300 CONTEXT_DATA{   41 text height  140 arrowhead   290 text: 304 contents  11 normal  12 place  13 direction
//                        42 rotation  43 width  90 colour  171 attachment      296 block: 341 which  15 place  16 scale
//                        46 rotation
//   302 LEADER{         10 end of its lines  11 direction of the landing  40 its length
//   304 LEADER_LINE{    10 corner...
//   305 } 303 } 301 }   170 kind of line, 0 none, 1 straight, 2 a spline
// The head is closed and filled, whatever arrow is asked for.
void Shapes::addMultiLeader(const std::vector<PlotGroup>& groups) {
    std::size_t end = 0, firstLeader = groups.size();
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (groups[i].code == 302 && firstLeader == groups.size()) firstLeader = i;
        if (groups[i].code == 301) end = i;
    }
    firstLeader = std::min(firstLeader, end);
    const std::span<const PlotGroup> all(groups), content = all.first(firstLeader), after = all.subspan(end);
    const auto real = [&](int code, double fallback) {
        const PlotGroup* group = findGroup(content, code);
        return group ? group->real : fallback;
    };
    const auto point = [&](int code, const OdGePoint3d& fallback) {
        const PlotGroup* group = findGroup(content, code);
        return group ? group->point : fallback;
    };
    const auto integer = [&](int code) { return groupOrZero(content, code).integer; };
    const Style own = list_.style();
    const OdGeVector3d normal = point(11, OdGePoint3d(0, 0, 1)).asVector();

    const PlotGroup* kind = findGroup(after, 170);
    Corners line;
    OdGePoint3d landing, landingEnd;
    for (std::size_t i = firstLeader; i < end && (!kind || kind->integer != 0); ++i) {
        const PlotGroup& group = groups[i];
        if (group.code == 302 || group.code == 304) {
            if (group.code == 302) landing = landingEnd = OdGePoint3d();
            const bool isLine = group.code == 304;
            OdGeVector3d direction;
            line.clear();
            for (++i; i < end && groups[i].code < 300; ++i) {
                if (groups[i].code == 10) {
                    line.push_back(groups[i].point);
                    if (!isLine) landing = landingEnd = groups[i].point;
                }
                if (groups[i].code == 11) direction = groups[i].point.asVector();
                if (groups[i].code == 40 && !isLine) landingEnd = landing + direction * groups[i].real;
            }
            if (isLine) {
                const bool splined = kind && kind->integer == 2, lands = !landingEnd.isEqualTo(landing);
                line.push_back(landing);
                if (lands && !splined) line.push_back(landingEnd);
                addLeaderParts(drawingdb::leaderParts(line, normal, real(140, 0), splined));
                if (lands && splined) list_.add(DisplayList::Kind::kPolyline, Corners{landing, landingEnd});
            }
            --i;
        }
    }

    if (integer(290) != 0) {
        const auto text = OdDbMText::createObject();
        text->setNormal(normal);
        text->setLocation(point(12, {}));
        text->setDirection(point(13, OdGePoint3d(1, 0, 0)).asVector());
        text->setTextHeight(real(41, 1));
        text->setWidth(std::max(real(43, 0), 0.0));
        text->setAttachment(std::clamp<int>(static_cast<int>(integer(171)), 1, 3));
        const PlotGroup* contents = findGroup(content, 304);
        if (contents) text->setContents(contents->text);
        if (findGroup(content, 90)) list_.setStyle(styles_.colored(own, colorOf(integer(90))));
        addMText(*text);
        list_.setStyle(own);
    } else if (const PlotGroup* block = findGroup(content, 341); block && integer(296) != 0) {
        const OdGePoint3d place = point(15, {}), scale = point(16, OdGePoint3d(1, 1, 1));
        addBlockAt(block->id, OdGeMatrix3d::translation(place.asVector()) * OdGeMatrix3d::planeToWorld(normal) *
                                  OdGeMatrix3d::rotation(real(46, 0), OdGeVector3d::kZAxis) *
                                  OdGeMatrix3d::scaling(OdGeScale3d(scale.x, scale.y, scale.z)));
    }
}

// Each vertex (11) has the direction of its mitre (13) and, for each line, how far along that it passes (the first 41
// behind a 74).
void Shapes::addMultiLine(const std::vector<PlotGroup>& groups) {
    std::vector<Corners> lines;
    OdGePoint3d vertex;
    OdGeVector3d mitre;
    std::size_t line = 0;
    bool first = false;
    for (const PlotGroup& group : groups) {
        if (group.code == 11) {
            vertex = group.point;
            line = 0;
        } else if (group.code == 13) {
            mitre = group.point.asVector();
        } else if (group.code == 74) {
            first = group.integer > 0;
        } else if (group.code == 41 && first) {
            if (lines.size() <= line) lines.emplace_back();
            lines[line++].push_back(vertex + mitre * group.real);
            first = false;
        }
    }
    const PlotGroup* flags = findGroup(groups, 71);
    for (Corners& corners : lines) {
        if (flags && (flags->integer & 2)) corners.push_back(corners.front());
        list_.add(DisplayList::Kind::kPolyline, corners);
    }
}

}  // namespace host
