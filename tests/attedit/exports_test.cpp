// The dialog as other modules call it: the command module and a module of another maker are loaded, this program is
// their host.
#include <algorithm>

#include "base/text.h"
#include "dialogs/dialog.h"
#include "drawingdb/block.h"
#include "drawingdb/database.h"
#include "hostapi/input.h"
#include "tests/attedit/foreign_module.h"
#include "tests/dialogs/each_maker.h"
#include "tests/module/loaded_services.h"

using fake::host;

namespace {

class AttEditExports : public EachMaker {
  protected:
    static void SetUpTestSuite() {
        module_ = base::loadModule(base::libraryFileName(hostapi::kCommandModule));
        foreign_ = base::loadModule(base::libraryFileName(L"attedit_foreign_module"));
    }
    static void TearDownTestSuite() {
        foreign_.reset();
        module_.reset();
    }
    void SetUp() override {
        EachMaker::SetUp();
        ASSERT_TRUE(module_ && foreign_);
        host().database = OdDbDatabase::readFile(base::fromUtf8(TORVEL_SOURCE_DIR "/tests/host/insert_field.dxf"));
        before_ = bytes();
    }
    void TearDown() override {
        host().database.reset();
        host().keywords.clear();
        EachMaker::TearDown();
    }

    static std::string bytes() { return host().database->writeBytes(); }
    static OdDbObjectId object(std::uint64_t handle) { return host().database->getObjectId(OdDbHandle(handle)); }

    int ask(std::deque<std::string> lines, OdDbObjectId block = host().database->findBlock(L"DOOR")) {
        script_.lines = std::move(lines);
        values_.clear();
        return (*base::findFunction<ForeignAsk>(foreign_.get(), "foreignAsk"))(block, OdGeMatrix3d::kIdentity, values_);
    }
    int edit(OdDbObjectId reference, std::deque<std::string> lines) {
        script_.lines = std::move(lines);
        return (*base::findFunction<ForeignEdit>(foreign_.get(), "foreignEdit"))(reference);
    }
    std::vector<std::wstring> texts() const {
        std::vector<std::wstring> texts;
        for (const ForeignValue& value : values_) texts.push_back(value.text);
        return texts;
    }

    static inline base::ModuleReference module_, foreign_;
    std::string before_;
    std::vector<ForeignValue> values_;
};
INSTANTIATE_TEST_SUITE_P(Makers, AttEditExports, EachMaker::all(), EachMaker::name);

TEST_P(AttEditExports, AskForValuesOfAttributesThatAreNotThereYet) {
    const LoadedServices services(L"rich");
    host().keywords = {{hostapi::kValue, L"new\\Plines"}};
    EXPECT_EQ(ask({"Number = D1", "caret SIZE? 0", "type SIZE?: x", "press NOTE?", "COST? =", "press OK"}), 1);
    EXPECT_EQ(texts(), (std::vector<std::wstring>{L"xSize 7 by 7!", L"D1", L"E?", L"new\\Plines", L"white", L""}));
    EXPECT_EQ(values_[0].definitionText, L"xSize 7 by 7!") << "so that its field can be taken from there";
    EXPECT_TRUE(values_[0].hasField);
    EXPECT_EQ(values_[1].definitionText, L"D?") << "a plain value of one line leaves the definition alone";
    EXPECT_EQ(values_[3].definitionText, L"new\\Plines");
    EXPECT_TRUE(bytes() == before_) << "the definitions were rolled back";
    EXPECT_EQ(dialogs::ResourceScope::current(), nullptr);
}

TEST_P(AttEditExports, AskAndAreCancelled) {
    const LoadedServices services(L"rich");
    const std::vector<std::wstring> defaults = {L"Size 7 by 7!", L"D?", L"E?", L"none", L"white", L"0"};
    for (const char* wayOut : {"press Cancel", "close", "key Escape"}) {
        host().keywords = {{hostapi::kValue, L"new\\Plines"}};
        EXPECT_EQ(ask({"Number = D1", "press NOTE?", "caret SIZE? 0", "type SIZE?: x", wayOut}), 0);
        EXPECT_EQ(texts(), defaults);
        EXPECT_EQ(values_[0].definitionText, defaults[0]) << "taken back before the caller does";
        EXPECT_EQ(values_[3].definitionText, defaults[3]);
    }
    EXPECT_EQ(ask({"press OK"}), 1);
    EXPECT_EQ(texts(), defaults);
    EXPECT_TRUE(bytes() == before_);
}

// A row turned plain after it had a field of its own tells its definition so.
TEST_P(AttEditExports, AskAgainForAValueThatHadAField) {
    const LoadedServices services(L"rich");
    EXPECT_EQ(ask({"caret SIZE? 0", "type SIZE?: x", "key Tab", "SIZE? = plain", "press OK"}), 1);
    EXPECT_EQ(values_[0].text, L"plain");
    EXPECT_EQ(values_[0].definitionText, L"plain");
    EXPECT_FALSE(values_[0].hasField);
}

TEST_P(AttEditExports, EditAReference) {
    for (const wchar_t* kind : {L"rich", L"poor"}) {
        const LoadedServices services(kind);
        EXPECT_EQ(edit(object(0x80), {"type Number: x", "key Tab", "SIZE? = y", "key Tab", "press Cancel"}), 0);
        EXPECT_TRUE(bytes() == before_);
        EXPECT_EQ(edit(object(0x80), {"press OK"}), 1);
        EXPECT_TRUE(bytes() == before_);
        EXPECT_EQ(host().database->undoGroupDepth(), 0);
    }
    const LoadedServices services(L"rich");
    EXPECT_EQ(edit(object(0x80), {"SIZE? = 1", "press OK"}), 1);
    EXPECT_EQ(object(0x82).openAs<OdDbAttribute>()->textString(), L"1");
    EXPECT_EQ(host().database->undoGroupDepth(), 0);
}

// A host without undo groups has no scope that would take back what was cancelled; the dialog does.
TEST_P(AttEditExports, WorkForTheCommandInAnyHost) {
    const auto command = std::ranges::find(host().registrations, "AttEdit", &fake::Registration::name);
    ASSERT_NE(command, host().registrations.end());
    const auto run = [&](const LoadedServices& services, std::deque<std::string> lines) {
        services->picks = {hostapi::Pick()};
        services->picks.front()->entity = object(0x80);
        script_.lines = std::move(lines);
        ICmdProcess* created = nullptr;
        command->creator(&created);
        const CMD_RUNSTATUS status = created->run();
        created->release();
        return status;
    };
    for (const wchar_t* kind : {L"rich", L"poor"}) {
        const LoadedServices services(kind);
        EXPECT_EQ(run(services, {"SIZE? = x", "key Tab", "press Cancel"}), kCommandCancelled);
        EXPECT_TRUE(bytes() == before_);
        EXPECT_EQ(run(services, {"SIZE? = x", "press OK"}), kCommandFinished);
        EXPECT_EQ(object(0x82).openAs<OdDbAttribute>()->textString(), L"x");
        EXPECT_EQ(host().database->undoGroupDepth(), 0);
        before_ = bytes();
    }
}

// What ends the dialog may be anybody's error.
TEST_P(AttEditExports, LeaveNothingBehindAnException) {
    const LoadedServices services(L"rich");
    EXPECT_THROW(edit(object(0x80), {"SIZE? = x", "key Tab", "there is no such row"}), ScriptFault);
    EXPECT_TRUE(bytes() == before_);
    EXPECT_EQ(host().database->undoGroupDepth(), 0);
}

TEST_P(AttEditExports, GoOnWhereTheDrawingRefusesAValue) {
    const LoadedServices services(L"rich");
    host().database = OdDbDatabase::readBytes(before_.substr(0, before_.size() - 20), L"cut.dxf");
    ASSERT_TRUE(host().database->isReadOnly());
    EXPECT_EQ(edit(object(0x80), {"tip Number(3)", "show", "press OK"}), 1);
    EXPECT_NE(script_.printed.find("The drawing is damaged"), std::string::npos);
    EXPECT_NE(script_.printed.find("SIZE? = \"plain\"  (disabled)"), std::string::npos);
    host().keywords = {{hostapi::kValue, L"new\\Plines"}};
    EXPECT_EQ(ask({"Number = D1", "type SIZE?: x", "press NOTE?", "color? = red", "press OK"}), 1);
    EXPECT_EQ(texts(), (std::vector<std::wstring>{L"Size 7 by 7!", L"D1", L"E?", L"none", L"red", L"0"}));
}

// There is no dialog that would take a line.
TEST_P(AttEditExports, TakeNothingElse) {
    const LoadedServices services(L"rich");
    for (const OdDbObjectId id : {OdDbObjectId(), host().database->modelSpaceId(), object(0x44), object(0x82)})
        EXPECT_EQ(edit(id, {}), 0);
    EXPECT_EQ(ask({}, host().database->modelSpaceId()), 0) << "no attributes";
    hostapi::AttributeValues values(1);
    auto* const show = base::findFunction(hostapi::ShowAttEditDialog);
    EXPECT_EQ((*show)(L"BLOCK", values, OdGeMatrix3d::kIdentity), 0) << "no definition";
    EXPECT_TRUE(bytes() == before_);
}

// As a library makes them that has not drawn the block yet.
TEST_P(AttEditExports, AskForDefinitionsInNoDrawing) {
    const LoadedServices services(L"rich");
    const auto definition = OdDbAttributeDefinition::createObject();
    definition->setTag(L"LOOSE");
    definition->setTextString(L"default");
    hostapi::AttributeValues values;
    values.emplace_back(definition, L"first");
    values.emplace_back(definition, L"");
    auto* const show = base::findFunction(hostapi::ShowAttEditDialog);
    script_.lines = {"LOOSE = one", "LOOSE(2) = two", "press OK"};
    EXPECT_EQ((*show)(L"BLOCK", values, OdGeMatrix3d::kIdentity), 1);
    EXPECT_EQ(boost::get<1>(values[0]), L"one");
    EXPECT_EQ(boost::get<1>(values[1]), L"two");
    EXPECT_EQ(definition->textString(), L"default");

    const auto lines = object(0x48).openAs<OdDbAttributeDefinition>();
    values.emplace_back(lines, lines->textString());
    host().keywords = {{hostapi::kValue, L"new\\Plines"}};
    script_.lines = {"press NOTE?", "press Cancel"};
    EXPECT_EQ((*show)(L"BLOCK", values, OdGeMatrix3d::kIdentity), 0);
    EXPECT_TRUE(bytes() == before_) << "taken back from the definition that is in a drawing";
}

}  // namespace
