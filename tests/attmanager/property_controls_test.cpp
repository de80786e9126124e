// Colours and lineweights as texts, in both units, and in the drop-downs of a dialog.
#include "torvelcmd2/attmanager/property_controls.h"

#include <gmock/gmock.h>

#include "base/paths.h"
#include "base/text.h"
#include "fake_core.h"
#include "property_controls_test.h"
#include "tests/dialogs/script_lines.h"

using namespace torvel;
using testing::ElementsAre;

namespace {

class PropertyControls : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        const std::wstring file = base::libraryFileName(L"torvelcore");
        const std::wstring folder = base::joinPath(base::folderOf(base::moduleFileName(base::processImage())),
                                                   base::joinPath(L"fake_host", L"properties"));
        core_ = base::loadModule(base::joinPath(folder, file));
        ASSERT_NE(core_, nullptr);
    }
    static void TearDownTestSuite() { core_.reset(); }
    void SetUp() override { state() = {}; }

    static FakeCoreState& state() { return *base::findFunction<FakeCoreStateFunction>(core_.get(), "fakeCoreState")(); }

    std::optional<std::int32_t> metricWeight(const OdString& text) {
        const std::int64_t units = std::exchange(state().lineWeightUnits, 1);
        const auto weight = weight_.fromText(text);
        state().lineWeightUnits = units;
        return weight;
    }

    CTLineWeightProperty weight_;
    COdColorProperty color_;

  private:
    static inline base::ModuleReference core_;
};

TEST_F(PropertyControls, LineweightsFromText) {
    const struct {
        const wchar_t* text;
        std::int32_t inMillimetres, inInches;
    } kCases[] = {
        {L"By Layer", -1, -1},  {L"By Block", -2, -2}, {L"Default", -3, -3},
        {L"by layer", -3, -3},  {L"thick", -3, -3},    {L"", -3, -3},
        {L".", -3, -3},         {L"0.3", 30, 762},     {L"0.012", 1, 30},
        {L"  0.3 mm", 30, 762}, {L"0.012''", 1, 30},   {L"0.005", 1, 13},
        {L"0.004''", 0, 10},    {L"0.0049", 0, 12},    {L"-0.3", -29, -761},
        {L"1e-1", 10, 254},     {L".5e", 50, 1270},    {L"2.11 mm x", 211, 5359},
        {L"1e300", -3, -3},     {L"nan", -3, -3},      {L"inf", -3, -3},
    };
    for (const auto& test : kCases) {
        state().lineWeightUnits = 1;
        EXPECT_EQ(weight_.fromText(test.text), test.inMillimetres) << base::toUtf8(test.text);
        state().lineWeightUnits = 0;
        EXPECT_EQ(weight_.fromText(test.text), test.inInches) << base::toUtf8(test.text);
    }
}

TEST_F(PropertyControls, LineweightsThatAFileMayHold) {
    for (const std::int32_t kept : {-3, -2, -1, 0, 5, 25, 211}) EXPECT_EQ(storableLineWeight(kept), kept);
    const std::pair<std::int32_t, std::int32_t> kNearest[] = {
        {-4, 0}, {-2147483647, 0}, {1, 0}, {27, 25}, {28, 30}, {44, 40}, {46, 50}, {206, 211}, {2147483647, 211}};
    for (const auto& [weight, nearest] : kNearest) EXPECT_EQ(storableLineWeight(weight), nearest) << weight;
}

TEST_F(PropertyControls, LineweightsToTextAndBack) {
    const std::vector<OdString> metric = weight_.choices();
    ASSERT_EQ(metric.size(), 27u);
    EXPECT_THAT(std::vector(metric.begin(), metric.begin() + 6),
                ElementsAre(L"By Layer", L"By Block", L"Default", L"0.00 mm", L"0.05 mm", L"0.09 mm"));
    EXPECT_EQ(metric.back(), L"2.11 mm");
    state().lineWeightUnits = 0;
    const std::vector<OdString> imperial = weight_.choices();
    EXPECT_EQ(imperial[3], L"0.000''");
    EXPECT_EQ(imperial[10], L"0.010''");
    EXPECT_EQ(imperial.back(), L"0.083''");
    for (std::size_t i = 0; i < imperial.size(); ++i)
        EXPECT_NEAR(*weight_.fromText(imperial[i]), metricWeight(metric[i]).value(), 1) << "three digits of an inch";
    state().lineWeightUnits = 2;  // anything but 0 is millimetres
    for (const OdString& text : metric) {
        ASSERT_TRUE(weight_.setText(text));
        EXPECT_EQ(weight_.text(), text);
    }
    state().translates = true;
    EXPECT_EQ(weight_.fromText(L"Wie Layer"), -1);
    EXPECT_EQ(weight_.fromText(L"By Layer"), -3);
    EXPECT_EQ(weight_.toText(-1), L"Wie Layer");
}

TEST_F(PropertyControls, ColorsToTextAndBack) {
    const struct {
        const wchar_t* text;
        OdCmColor color;
    } kCases[] = {
        {L"By Layer", OdCmColor()},
        {L"By Block", OdCmColor::fromIndex(0)},
        {L"red", OdCmColor::fromRgb(0xFF0000)},
        {L"magenta", OdCmColor::fromRgb(0xFF00FF)},
        {L"Foreground", OdCmColor::fromMethod(OdCmEntityColor::kForeground)},
        {L"None", OdCmColor::fromMethod(OdCmEntityColor::kNone)},
        {L"color 30", OdCmColor::fromIndex(30)},
        {L"12,34,56", OdCmColor::fromRgb(12, 34, 56)},
    };
    for (const auto& test : kCases) {
        EXPECT_EQ(color_.toText(test.color), test.text);
        EXPECT_EQ(color_.fromText(test.text), test.color) << base::toUtf8(test.text);
    }
    color_.setValue(OdCmColor::fromIndex(30));
    EXPECT_FALSE(color_.setText(L"mauve"));
    EXPECT_FALSE(color_.setText(L"More Colors..."));
    EXPECT_EQ(color_.value(), OdCmColor::fromIndex(30));
    EXPECT_EQ(state().shownFirst, OdCmColor::fromIndex(30));
    EXPECT_EQ(color_.fromText(L"MAGENTA"), OdCmColor::fromRgb(0xFF00FF));
    state().chosen = OdCmColor::fromIndex(3);
    EXPECT_TRUE(color_.setText(L"More Colors..."));
    EXPECT_EQ(color_.value(), OdCmColor::fromIndex(3));
    EXPECT_THAT(color_.choices(), ElementsAre(L"By Layer", L"By Block", L"red", L"yellow", L"green", L"cyan", L"blue",
                                              L"magenta", L"More Colors..."));
}

class PropertiesDialog final : public dialogs::Dialog {
  public:
    PropertiesDialog() : Dialog(IDD_PROPERTIES) {
        properties_.add(color);
        properties_.add(weight);
    }
    CColorCtl color{*this, IDC_COLOR};
    CLineWeightCtl weight{*this, IDC_WEIGHT};
    std::vector<int> written;

  private:
    void onInit() override {
        color.setColor(OdCmColor::fromIndex(30));
        weight.setLineWeight(25);
    }
    void onCommand(int control, dialogs::Event event) override {
        if (properties_.onCommand(control, event)) written.push_back(control);
    }
    bool onLeave(int control, int) override {
        if (properties_.onLeave(control)) written.push_back(control);
        return true;
    }
    CEditPropContainer properties_;
};

TEST_F(PropertyControls, InTheDropDownsOfADialog) {
    ScriptLines lines;
    const auto run = [&](PropertiesDialog& dialog, std::deque<std::string> script) {
        lines.lines = std::move(script);
        ASSERT_EQ(dialog.runModal(), dialogs::kOkButton);
    };
    dialogs::useForms(lines);
    const dialogs::ResourceScope resources(base::processImage());
    PropertiesDialog chosen;
    run(chosen, {"Color = blue", "Lineweight = 0.50 mm", "press OK"});
    EXPECT_EQ(chosen.color.color(), OdCmColor::fromRgb(0x0000FF));
    EXPECT_EQ(chosen.weight.lineWeight(), 50);
    EXPECT_THAT(chosen.written, ElementsAre(IDC_COLOR, IDC_WEIGHT));

    PropertiesDialog typed;  // a typed text counts when its field is left
    run(typed, {"Color = 1,2,3", "Lineweight = .3", "press OK"});
    EXPECT_EQ(typed.color.color(), OdCmColor::fromRgb(1, 2, 3));
    EXPECT_EQ(typed.text(IDC_WEIGHT), L"0.30 mm");
    EXPECT_THAT(typed.written, ElementsAre(IDC_COLOR, IDC_WEIGHT));

    PropertiesDialog refused;  // no value: the old one is shown again and nothing is written
    run(refused, {"Color = mauve", "Lineweight = thick", "Color = More Colors...", "press OK"});
    EXPECT_EQ(refused.text(IDC_COLOR), L"color 30");
    EXPECT_EQ(refused.text(IDC_WEIGHT), L"Default");
    EXPECT_THAT(refused.written, ElementsAre(IDC_WEIGHT));

    state().chosen = OdCmColor::fromIndex(5);
    PropertiesDialog more;
    run(more, {"Color = More Colors...", "press OK"});
    EXPECT_EQ(more.text(IDC_COLOR), L"blue");
    EXPECT_THAT(more.written, ElementsAre(IDC_COLOR));
    dialogs::useStandard();
}

}  // namespace
