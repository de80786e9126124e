// Transforms of entities without a class: which groups follow, which stay, and what is refused.
#include "drawingdb/dictionary.h"
#include "drawingdb/entity.h"
#include "entity_fixture.h"

namespace {

// Takes (x, y, z) to (10 - 2y, 2x, 2z).
const OdGeMatrix3d kTurned =
    OdGeMatrix3d::translation({10, 0, 0}) * OdGeMatrix3d::rotation(drawingdb::kPi / 2, OdGeVector3d::kZAxis);
const OdGeMatrix3d kScaled = kTurned * OdGeMatrix3d::scaling(2);
const OdGeMatrix3d kSqueezed = OdGeMatrix3d::scaling(OdGeScale3d(2, 1, 1));
const OdGeMatrix3d kMirrored = OdGeMatrix3d::scaling(OdGeScale3d(-1, 1, 1));

std::vector<std::string> split(const std::string& groups) {
    std::vector<std::string> pairs;
    std::istringstream words(groups);
    for (std::string code, value; std::getline(words, code, '|') && std::getline(words, value, '|');)
        pairs.push_back(code + "|" + value);
    return pairs;
}

// The same groups, reals to within rounding.
void expectGroups(const std::vector<std::string>& found, const std::vector<std::string>& wanted) {
    const auto all = [](const std::vector<std::string>& groups) {
        std::string text;
        for (const std::string& group : groups) text += group + "  ";
        return text;
    };
    bool same = found.size() == wanted.size();
    for (std::size_t i = 0; same && i < found.size(); ++i) {
        const std::size_t bar = wanted[i].find('|');
        same = found[i].substr(0, bar + 1) == wanted[i].substr(0, bar + 1);
        if (!same || found[i] == wanted[i]) continue;
        char* end = nullptr;
        const std::string number = wanted[i].substr(bar + 1);
        const double value = std::strtod(number.c_str(), &end);
        same = end != number.c_str() && std::fabs(std::strtod(found[i].c_str() + bar + 1, nullptr) - value) < 1e-12;
    }
    EXPECT_TRUE(same) << "found  " << all(found) << "\nwanted " << all(wanted);
}

struct Case {
    const char* version;
    OdGeMatrix3d matrix;
    std::string groups, wanted;
    // The other kinds of matrix are refused.
    bool alikeOnly = true;
};

const Case kCases[] = {
    {"AC1015", kScaled, "0|SHAPE|100|AcDbShape|39|0.5|10|1|20|2|30|3|40|0.5|2|BAT|50|15",
     "0|SHAPE|100|AcDbShape|39|1|10|6|20|2|30|6|40|1|2|BAT|50|105"},
    // What is not turned keeps its digits.
    {"AC1015", OdGeMatrix3d::translation({1, 1, 0}), "0|SHAPE|100|AcDbShape|10|1.00|20|2|30|3.50|40|0.50|2|BAT|50|15.0",
     "0|SHAPE|100|AcDbShape|10|2.0|20|3.0|30|3.50|40|0.50|2|BAT|50|15.0"},
    {"AC1027", kScaled, "0|PDFUNDERLAY|100|AcDbUnderlayReference|340|1F|10|1|20|2|30|0|41|1.5|280|2",
     "0|PDFUNDERLAY|100|AcDbUnderlayReference|340|1F|10|6|20|2|30|0|41|3|280|2|50|90|42|2|43|2"},
    {"AC1024", kScaled, "0|MESH|100|AcDbSubDMesh|71|2|72|0|91|0|92|2|10|1|20|2|30|3|10|0|20|0|30|1|93|3|90|2|90|0|90|1",
     "0|MESH|100|AcDbSubDMesh|71|2|72|0|91|0|92|2|10|6|20|2|30|6|10|10|20|0|30|2|93|3|90|2|90|0|90|1", false},
    {"AC1015", kScaled,
     "0|MLINE|100|AcDbMline|2|STANDARD|40|0.8|70|0|10|1|20|2|30|0|210|0|220|0|230|1|11|1|21|2|31|0|12|1|22|0|32|0|"
     "13|0|23|1|33|0|74|2|41|0.5|41|0|75|0",
     "0|MLINE|100|AcDbMline|2|STANDARD|40|1.6|70|0|10|6|20|2|30|0|210|0|220|0|230|1|11|6|21|2|31|0|12|0|22|1|32|0|"
     "13|-1|23|0|33|0|74|2|41|1|41|0|75|0"},
    {"AC1021", kScaled,
     "0|HELIX|100|AcDbSpline|71|3|40|0|40|1|10|1|20|0|30|0|100|AcDbHelix|10|0|20|0|30|0|11|1|21|0|31|0|"
     "12|0|22|0|32|1|40|1|41|3|42|0.5|290|1",
     "0|HELIX|100|AcDbSpline|71|3|40|0|40|1|10|10|20|2|30|0|100|AcDbHelix|10|10|20|0|30|0|11|10|21|2|31|0|"
     "12|0|22|0|32|1|40|2|41|3|42|1|290|1"},
    {"AC1021", kScaled, "0|LIGHT|100|AcDbLight|70|1|40|1|10|1|20|2|30|3|11|0|21|0|31|0",
     "0|LIGHT|100|AcDbLight|70|1|40|1|10|6|20|2|30|6|11|10|21|0|31|0"},
    {"AC1015", kTurned, "0|TOLERANCE|100|AcDbFcf|3|STANDARD|10|1|20|2|30|0|1|flat|11|1|21|0|31|0",
     "0|TOLERANCE|100|AcDbFcf|3|STANDARD|10|8|20|1|30|0|1|flat|11|0|21|1|31|0"},
    // Dimensions. What is new stands in the zone of its own; the factor of the length and the overall scale keep what
    // it shows.
    {"AC1015", kScaled,
     "0|DIMENSION|100|AcDbDimension|10|8|20|-2|30|0|11|4|21|-2|31|0|70|32|42|8|3|NONE|"
     "100|AcDbAlignedDimension|13|0|23|0|33|0|14|8|24|0|34|0|100|AcDbRotatedDimension",
     "0|DIMENSION|100|AcDbDimension|10|14|20|16|30|0|11|14|21|8|31|0|70|32|42|16|3|NONE|51|270|"
     "100|AcDbAlignedDimension|13|10|23|0|33|0|14|10|24|16|34|0|50|90|100|AcDbRotatedDimension|"
     "1001|ACAD|1000|DSTYLE|1002|{|1070|40|1040|2|1070|144|1040|0.5|1002|}"},
    {"AC1015", kTurned,
     "0|DIMENSION|100|AcDbDimension|10|8|20|-2|30|0|11|4|21|-2|31|0|70|160|42|8|53|270|51|300|3|NONE|"
     "100|AcDbAlignedDimension|13|0|23|0|33|0|14|8|24|0|34|0|50|30|52|60|100|AcDbRotatedDimension",
     "0|DIMENSION|100|AcDbDimension|10|12|20|8|30|0|11|12|21|4|31|0|70|160|42|8|53|360|51|210|3|NONE|"
     "100|AcDbAlignedDimension|13|10|23|0|33|0|14|10|24|8|34|0|50|120|52|60|100|AcDbRotatedDimension"},
    {"AC1015", OdGeMatrix3d::scaling(2),
     "0|DIMENSION|100|AcDbDimension|10|0|20|0|30|0|11|1|21|1|31|0|70|4|42|3|3|NONE|"
     "100|AcDbRadialDimension|15|3|25|0|35|0|40|1.5|"
     "1001|OTHER|1040|7|1001|ACAD|1000|DSTYLE|1002|{|1070|147|1040|0.1|1070|144|1040|25.4|1002|}",
     "0|DIMENSION|100|AcDbDimension|10|0|20|0|30|0|11|2|21|2|31|0|70|4|42|6|3|NONE|"
     "100|AcDbRadialDimension|15|6|25|0|35|0|40|3|"
     "1001|OTHER|1040|7|1001|ACAD|1000|DSTYLE|1002|{|1070|147|1040|0.1|1070|144|1040|12.7|1070|40|1040|2|1002|}"},
    // An angle is no length; the point of its arc lies in the plane, whose axes are others than the world's here.
    {"AC1015", kScaled,
     "0|DIMENSION|100|AcDbDimension|10|1|20|0|30|0|11|2|21|2|31|-1|70|2|42|1.25|210|0|220|0|230|-1|3|NONE|"
     "100|AcDb2LineAngularDimension|13|0|23|0|33|0|14|1|24|0|34|0|15|0|25|1|35|0|16|-3|26|1|36|0",
     "0|DIMENSION|100|AcDbDimension|10|10|20|2|30|0|11|-6|21|-4|31|-2|70|2|42|1.25|210|0|220|0|230|-1|3|NONE|51|90|"
     "100|AcDb2LineAngularDimension|13|10|23|0|33|0|14|10|24|2|34|0|15|8|25|0|35|0|16|-8|26|6|36|0|"
     "1001|ACAD|1000|DSTYLE|1002|{|1070|40|1040|2|1002|}"},
    // Without markers.
    {"AC1009", kTurned, "0|DIMENSION|10|8|20|-2|30|0|11|4|21|-2|31|0|70|0|3|NONE|13|0|23|0|33|0|14|8|24|0|34|0",
     "0|DIMENSION|10|12|20|8|30|0|11|12|21|4|31|0|70|0|3|NONE|13|10|23|0|33|0|14|10|24|8|34|0|51|270|50|90"},
    {"AC1018", kTurned,
     "0|ARC_DIMENSION|100|AcDbDimension|10|8|20|-2|30|0|11|4|21|-2|31|0|70|5|3|NONE|"
     "100|AcDbArcDimension|13|0|23|0|33|0|14|8|24|0|34|0|15|1|25|1|35|0|70|0|40|0|41|0|71|1|16|1|26|0|36|0|17|0|27|1|"
     "37|0",
     "0|ARC_DIMENSION|100|AcDbDimension|10|12|20|8|30|0|11|12|21|4|31|0|70|5|3|NONE|51|270|"
     "100|AcDbArcDimension|13|10|23|0|33|0|14|10|24|8|34|0|15|9|25|1|35|0|70|0|40|0|41|0|71|1|16|10|26|1|36|0|17|9|27|"
     "0|37|0"},
};

TEST(Carried, FollowsWhatItsFormAllows) {
    for (const Case& row : kCases) {
        std::string head = "|5|A|", entity = row.groups, wanted = row.wanted;
        if (row.version != std::string("AC1009")) head += "100|AcDbEntity|";
        head += "8|0|";
        for (std::string* groups : {&entity, &wanted}) groups->replace(groups->find('|', 2), 1, head);
        const auto database = drawing(row.version, entity);
        const auto object = opened<OdDbEntity>(database, 0xA, OdDb::forWrite);
        std::vector<OdGeMatrix3d> refused;
        if (row.alikeOnly) refused = {kSqueezed, kMirrored};
        if (object->dxfName() == "TOLERANCE") refused.push_back(kScaled);
        for (const OdGeMatrix3d& matrix : refused)
            EXPECT_EQ(object->transformBy(matrix), OdResult::transformRefused) << row.groups;
        expectGroups(savedGroups(database, "A"), split(entity));
        EXPECT_EQ(object->transformBy(row.matrix), OdResult::ok) << row.groups;
        expectGroups(savedGroups(database, "A"), split(wanted));
    }
}

// Whatever knows a part of an arc by angles is left to those who know from where they are counted.
TEST(Carried, PartsOfArcsAreNotTurned) {
    const auto database = drawing("AC1018",
                                  "0|ARC_DIMENSION|5|A|100|AcDbEntity|8|0|100|AcDbDimension|10|8|20|-2|30|0|"
                                  "100|AcDbArcDimension|15|1|25|1|35|0|70|1|40|0.5|41|1");
    const auto object = opened<OdDbEntity>(database, 0xA, OdDb::forWrite);
    EXPECT_EQ(object->transformBy(kTurned), OdResult::transformRefused);
    EXPECT_EQ(object->transformBy(OdGeMatrix3d::scaling(2)), OdResult::ok);
}

}  // namespace
