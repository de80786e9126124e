// Dictionaries, layouts and viewports.
#pragma once

#include "drawingdb/entity.h"

class DRAWINGDB_API OdDbDictionary : public OdDbObject {
    OD_DECLARE_CONCRETE_CLASS(OdDbDictionary)
  public:
    struct Entry {
        OdString name;
        OdDbObjectId id;
    };
    std::size_t numEntries() const { return entries_.size(); }
    /// Entries in file order; those whose object is missing or erased are left out.
    std::vector<Entry> entries() const;
    /// Without case; null when there is none or its object is gone.
    OdDbObjectId getAt(const OdString& name) const;
    /// Stores an object under a name, replacing the entry (the object replaced is erased when the dictionary owns it).
    /// A new object comes into the database with this dictionary as its owner.
    OdDbObjectId setAt(const OdString& name, const OdDbObjectPtr& object);
    /// Takes an entry out; the object is left as it is. Returns its id.
    OdDbObjectId remove(const OdString& name);
    void removeId(OdDbObjectId id);
    bool isTreatElementsAsHard() const { return hardOwner_ != 0; }
    void setTreatElementsAsHard(bool on);

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    void readRunGroup(const drawingdb::Group& group, int zone) override;
    void writeRun(drawingdb::GroupWriter& writer, int zone) const override;
    void clearRuns() override;
    friend struct drawingdb::ObjectAccess;

    struct Stored {
        drawingdb::FileText name;
        drawingdb::HandleRef object;
        std::int16_t code = 350;
    };
    std::vector<Stored> entries_;
    std::int16_t hardOwner_ = 0;
    std::int16_t cloning_ = 1;
};
using OdDbDictionaryPtr = OdSmartPtr<OdDbDictionary>;

class DRAWINGDB_API OdDbLayout : public OdDbObject {
    OD_DECLARE_CONCRETE_CLASS(OdDbLayout)
  public:
    OdString layoutName() const;
    int tabOrder() const { return tabOrder_; }
    OdDbObjectId blockTableRecordId() const;

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    drawingdb::FileText name_;
    drawingdb::HandleRef block_;
    drawingdb::HandleRef lastViewport_;
    std::int16_t tabOrder_ = 0;
    std::int16_t flags_ = 0;
    OdGePoint3d limitsMin_, limitsMax_, extentsMin_, extentsMax_;
};

class DRAWINGDB_API OdDbViewport : public OdDbEntity {
    OD_DECLARE_CONCRETE_CLASS(OdDbViewport)
  public:
    /// 1 is the layout's own viewport; floating ones have greater numbers.
    int number() const { return number_; }
    OdGePoint3d centerPoint() const { return center_; }
    double width() const { return width_; }
    double height() const { return height_; }
    bool isOn() const { return status_ > 0; }
    OdGePoint2d viewCenter() const { return OdGePoint2d(viewCenter_.x, viewCenter_.y); }
    OdGePoint3d viewTarget() const { return viewTarget_; }
    OdGeVector3d viewDirection() const { return viewDirection_; }
    double viewHeight() const { return viewHeight_; }
    double twistAngle() const { return twist_; }
    /// What the viewport shows: the point in its middle, in coordinates of the view, and the height in model units.
    void setView(const OdGePoint2d& center, double height);
    /// From the world to the coordinates of the view: seen along its direction, twisted, the target at the origin.
    OdGeMatrix3d worldToView() const;
    /// Paper units per model unit.
    double customScale() const { return viewHeight_ > 0 ? height_ / viewHeight_ : 1.0; }

    bool geomExtents(OdGeExtents3d& extents) const override;

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    OdGePoint3d center_;
    OdGePoint3d viewCenter_;
    OdGePoint3d viewTarget_;
    OdGeVector3d viewDirection_{0, 0, 1};
    double width_ = 0;
    double height_ = 0;
    double viewHeight_ = 1;
    double twist_ = 0;
    std::int16_t status_ = 1;
    std::int16_t number_ = 0;
};
