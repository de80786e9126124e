// Fields: texts that are computed from something else.
#pragma once

#include <map>
#include <optional>
#include <string_view>

#include "drawingdb/object.h"

namespace drawingdb {

/// The marker of a field's child: "%<\_FldIdx N>%".
DRAWINGDB_API OdString fieldIndexMarker(std::size_t child);

struct FieldIndexMarker {
    std::size_t child;
    std::size_t end;  ///< of the marker in the text
};
/// The marker that begins there in a text, as field codes are read; nothing when none does.
DRAWINGDB_API std::optional<FieldIndexMarker> fieldIndexMarkerAt(std::wstring_view text, std::size_t begin);

}  // namespace drawingdb

/// A value of a field: a data item or the cached result. A date is the Julian day of local time, in `real`.
struct OdDbFieldValue {
    enum Type {
        kUnknown = 0,
        kLong = 1,
        kDouble = 2,
        kString = 4,
        kDate = 8,
        kPoint = 16,
        k3dPoint = 32,
        kObjectId = 64
    };
    int type = kUnknown;
    std::int64_t integer = 0;
    double real = 0;
    OdString text;
    double point[3] = {};
    OdDbObjectId object;
};

/// A field. A text with fields is itself a field of the evaluator "_text": its code is the text with index markers
/// "%<\_FldIdx 0>%", its children are the fields in marker order.
///
/// In a code, "%<\_ObjId h>%" names the object with the handle h (decimal digits) of the field's database; the stored
/// code has
/// "%<\_ObjIdx n>%" in its place. Fields nest 64 deep; what lies deeper in a code stays text.
class DRAWINGDB_API OdDbField : public OdDbObject {
    OD_DECLARE_CONCRETE_CLASS(OdDbField)
  public:
    OdDbField();
    ~OdDbField() override;

    /// Whether files of the drawing's version hold fields.
    static bool canBeHeld(const OdDbDatabase& database);

    /// What getFieldCode and setFieldCode do; the numbers are part of the interface.
    enum CodeFlag {
        kFieldCode = 0,      ///< get: the code as stored, with index markers
        kRawCode = 1,        ///< get: the code with the children's codes written inline; one field is "%<...>%"
        kEvaluatedText = 2,  ///< get: the text that the field shows
        kTextField = 128,    ///< set: the code is text with fields in it
        kPreserveChildren =
            256  ///< set: the children given stand for the index markers; codes in the text are not parsed
    };
    /// Bits of the evaluation option; 63 is all events.
    enum EvalOption {
        kNever = 0,
        kOnOpen = 1,
        kOnSave = 2,
        kOnPlot = 4,
        kOnEtransmit = 8,
        kOnRegen = 16,
        kOnDemand = 32,
        kAutomatic = 63
    };
    enum State { kInitialized = 1, kCompiled = 2, kModified = 4, kEvaluated = 8, kHasCache = 16 };

    OdString evaluatorId() const;
    int evaluationOption() const { return evaluationOption_; }
    void setEvaluationOption(int option);

    OdString getFieldCode(int flags) const;
    /// Children given stand for the index markers in the code, and codes in the text are not parsed. Without children
    /// every
    /// "%<...>%" in the text becomes a child, in order, and the code gets markers for them; markers that are there
    /// already stay. A text that is one field and nothing else ("%<\AcVar Title>%", or "\AcVar Title" for a known
    /// evaluator), without kTextField, makes this the field itself. Children given are taken over; one that is in a
    /// database already is copied, unless it is this field's. Children that the field had before are erased.
    void setFieldCode(const OdString& code, int flags = 0, const std::vector<OdSmartPtr<OdDbField>>& children = {});

    std::size_t childCount() const;
    /// Null when there is no such child.
    OdSmartPtr<OdDbField> getChild(std::size_t index, OdDb::OpenMode mode = OdDb::forRead) const;

    /// A new field, in no database, with this one's code, children, data items, evaluation option and cached value.
    OdSmartPtr<OdDbField> copy() const;

    void setData(const OdString& key, std::int64_t value);
    void setData(const OdString& key, const OdDbFieldValue& value);
    /// Type kUnknown when there is no such item.
    OdDbFieldValue getData(const OdString& key) const;

    /// Evaluates children, then the field, when `context` (bits of EvalOption) meets the evaluation option. A field in
    /// a database that hangs on a text gives the text its value; in a multi-line text, values of fields are escaped,
    /// and the text around them keeps its formatting codes. An evaluator that is not known keeps the cached value.
    /// False when a value could not be had; it is then "####" unless there was a cached one. An empty value shows as
    /// "----". Fields and texts whose value changes are opened for write for that time (in a read-only drawing that
    /// throws OdError(readOnly)); what stays the same is not touched.
    bool evaluate(int context, OdDbDatabase* database);
    OdDbFieldValue value() const;
    /// The format of the field's value ("%tc1", "%lu2%pr4").
    OdString format() const;
    int state() const { return state_; }

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    void readRunGroup(const drawingdb::Group& group, int zone) override;
    void writeRun(drawingdb::GroupWriter& writer, int zone) const override;
    void clearRuns() override;
    void afterDecode() override;
    /// Brings new children into the database; called when the field itself has just come into it.
    void enterDatabase();
    friend class drawingdb::Core;
    friend struct drawingdb::ObjectAccess;

  private:
    struct Stored;      // what else files keep of a field
    struct Evaluation;  // one run of evaluate
    using FieldPtr = OdSmartPtr<OdDbField>;

    void takeText(std::wstring_view text, bool textField, int depth);
    void takeCode(std::wstring_view code, int depth);
    OdString takeNested(std::wstring_view code, bool objects, int depth);
    void replaceChildren(const std::vector<FieldPtr>& children);
    FieldPtr copyWithin(std::size_t& budget, int depth) const;
    OdString rawCode(std::size_t& budget, int depth) const;
    bool evaluateIn(Evaluation& run, int depth, bool escapes);
    void evaluateText(const std::vector<FieldPtr>& children, bool escapes);
    OdString shownIn(bool escapes) const;
    bool evaluateCode(Evaluation& run, const std::vector<FieldPtr>& children);
    void keep(const OdDbFieldValue& value, const OdString& shown, int quantity);
    bool fail(int status);
    bool hasCache() const;
    void passToText(OdDbObject& text, bool escapes);

    OdString evaluator_;
    OdString code_;
    OdString shown_;                                  // the text that the field shows
    std::vector<drawingdb::HandleRef> childRefs_;     // children in the database
    std::vector<OdSmartPtr<OdDbField>> newChildren_;  // children that come into it together with this field
    std::vector<drawingdb::HandleRef> objectRefs_;    // objects that the code names by index
    OdDbFieldValue value_;
    std::unique_ptr<Stored> stored_;
    std::int32_t evaluationOption_ = kAutomatic;
    std::int32_t state_ = 0;
    std::int32_t evaluationStatus_ = 1;  // 1 not yet evaluated, 2 success, 4 no such evaluator, 64 no value
};
using OdDbFieldPtr = OdSmartPtr<OdDbField>;
