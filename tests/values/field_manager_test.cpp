#include <deque>
#include <gtest/gtest.h>

#include "torvelhost/modules/field_manager/field_questions.h"

namespace {

// Answers the prompts with texts; one that is a keyword in full is that keyword.
class Answers final : public HostEdInput {
  public:
    explicit Answers(std::deque<OdString> answers) : answers_(std::move(answers)) {}
    std::size_t left() const { return answers_.size(); }

    int getKeyword(const wchar_t*, const wchar_t* keywords, int, std::uintptr_t textOut, std::uintptr_t) override {
        if (answers_.empty()) return hostapi::kCancel;
        const OdString answer = answers_.front();
        answers_.pop_front();
        if (answer.empty()) return hostapi::kEmpty;
        const OdString list = L" " + OdString(keywords) + L" ";
        if (const std::size_t place = list.find(L" " + answer + L" "); place != OdString::npos)
            return hostapi::kFirstKeyword +
                   static_cast<int>(std::count(list.begin(), list.begin() + static_cast<std::ptrdiff_t>(place), L' '));
        *reinterpret_cast<OdString*>(textOut) = answer;
        return hostapi::kValue;
    }
    int getPoint(const OdGePoint3d*, OdGePoint3d&, const wchar_t*, const wchar_t*, int, std::uintptr_t,
                 HostEdInputTracker*) override {
        return hostapi::kCancel;
    }
    int getAngle(double&, const wchar_t*, const wchar_t*, int, std::uintptr_t) override { return hostapi::kCancel; }
    void printMessage(const wchar_t*, ...) override {}
    bool getString(OdString&) override { return false; }
    int getDistance(const OdGePoint3d*, double&, const wchar_t*, const wchar_t*, int, std::uintptr_t) override {
        return hostapi::kCancel;
    }
    int getInteger(int&, const wchar_t*, const wchar_t*, int, std::uintptr_t) override { return hostapi::kCancel; }
    void setCurrentEntity(int, OdDbEntity*) override {}

  private:
    std::deque<OdString> answers_;
};

TEST(FieldManager, MakesTheFieldThatWasAskedFor) {
    const OdDbDatabasePtr database = OdDbDatabase::createNew();
    database->setHeaderText("$TITLE", 1, L"Plan");
    database->setClock([] { return std::int64_t{1720537445}; });
    const OdDbObjectId layer = database->findLayer(L"0");
    const OdString handle = std::to_wstring(layer.handle().value());
    const struct {
        std::deque<OdString> answers;
        OdString code;
        OdString shown;
    } rows[] = {
        {{L"%<\\AcVar Title \\f \"%tc1\">%"}, L"%<\\AcVar Title \\f \"%tc1\">%", L"PLAN"},
        {{L"\\AcVar Title"}, L"%<\\AcVar Title>%", L"Plan"},
        {{L"\\NoSuch Title"}, L"%<\\NoSuch Title>%", L"####"},
        {{L"of %<\\AcVar Title>%!"}, L"of %<\\AcVar Title>%!", L"of Plan!"},
        {{L"Property", L"Title", L"%tc1"}, L"%<\\AcVar Title \\f \"%tc1\">%", L"PLAN"},
        {{L"Property", L"Client", L""}, L"%<\\AcVar CustomDP.Client>%", L"####"},
        {{L"Date", L"Date", L"yyyy \"x\""}, L"%<\\AcVar Date \\f \"yyyy \\\"x\\\"\">%", L"2024 \"x\""},
        {{L"Variable", L"LUNITS", L""}, L"%<\\AcVar LUNITS>%", L"2"},
        {{L"Object", L"Name", L""}, L"%<\\AcObjProp Object(%<\\_ObjId " + handle + L">%).Name>%", L"0"},
        {{L"what", L"Formula", L"3*4", L"%lu2%pr1"}, L"%<\\AcExpr (3*4) \\f \"%lu2%pr1\">%", L"12.0"},
    };
    for (const auto& row : rows) {
        Answers answers(row.answers);
        OdString said;
        const OdDbFieldPtr field = fieldmanager::askField(
            {answers, *database, [&](const wchar_t*) { return layer; }, [&](const OdString& text) { said = text; }});
        ASSERT_TRUE(field);
        EXPECT_EQ(field->getFieldCode(OdDbField::kRawCode), row.code);
        EXPECT_EQ(field->getFieldCode(OdDbField::kEvaluatedText), row.shown);
        EXPECT_EQ(said, L"The field shows: " + row.shown);
        EXPECT_EQ(answers.left(), 0u);
    }
}

TEST(FieldManager, GivesUpWhenAskedTo) {
    const OdDbDatabasePtr database = OdDbDatabase::createNew();
    for (const std::deque<OdString>& given :
         {std::deque<OdString>{}, {L""}, {L"Formula", L""}, {L"Object"}, {L"Formula", L"1+1"}}) {
        Answers answers(given);
        EXPECT_FALSE(fieldmanager::askField(
            {answers, *database, [](const wchar_t*) { return OdDbObjectId(); }, [](const OdString&) {}}));
    }
}

}  // namespace
