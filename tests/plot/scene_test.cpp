// The scene: whatever was done to a drawing, its picture is the one that a scene made anew shows.
#include "torvelhost/plot/scene.h"

#include <gtest/gtest.h>
#include <random>

#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/curves.h"
#include "drawingdb/layer.h"
#include "drawingdb/mtext.h"
#include "drawingdb/symbol_table.h"
#include "drawingdb/viewport.h"
#include "drawingdb/wipeout.h"
#include "torvelhost/plot/picture.h"
#include "torvelhost/plot/plotter.h"
#include "torvelhost/plot/style.h"

namespace host {
namespace {

constexpr int kWidth = 300, kHeight = 200;

struct Sight {
    OdDbObjectId space;
    OdGePoint2d center;
    double height;
};

OdGeMatrix3d toPixels(const Sight& sight) {
    const double scale = kHeight / sight.height;
    return OdGeMatrix3d::coordSystem(
        OdGePoint3d(kWidth / 2.0 - sight.center.x * scale, kHeight / 2.0 + sight.center.y * scale, 0),
        OdGeVector3d(scale, 0, 0), OdGeVector3d(0, -scale, 0), OdGeVector3d());
}

PixelBuffer pictureOf(Scene& scene, const Sight& sight, int slice = 1000) {
    PixelBuffer buffer;
    buffer.width = kWidth;
    buffer.height = kHeight;
    scene.begin(sight.space, toPixels(sight), kHeight / sight.height, buffer);
    double before = 0;
    while (!scene.continueFor(std::chrono::milliseconds(slice))) {
        EXPECT_LE(before, scene.progress());
        before = scene.progress();
        EXPECT_LT(before, 1.0);
    }
    EXPECT_EQ(scene.progress(), 1.0);
    return buffer;
}

std::size_t differences(const PixelBuffer& a, const PixelBuffer& b) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < a.pixels.size(); ++i) count += a.pixels[i] != b.pixels[i] ? 1 : 0;
    return count;
}

std::size_t inked(const PixelBuffer& buffer) {
    return buffer.pixels.size() - static_cast<std::size_t>(std::ranges::count(buffer.pixels, 0xFFFFFFFF));
}

// A drawing with a layout and its viewport, and somebody who does things to it at random.
class Editor {
  public:
    explicit Editor(unsigned seed) : random_(seed) {
        for (const wchar_t* const name : {L"WALLS", L"NOTES"}) {
            const auto layer = OdDbLayerTableRecord::createObject();
            layer->setName(name);
            layers_.push_back(database->layerTableId().openAs<OdDbSymbolTable>(OdDb::forWrite)->add(layer));
        }
        inner_ = OdDbBlockTableRecord::addNew(*database, L"INNER");
        outer_ = OdDbBlockTableRecord::addNew(*database, L"OUTER");
        addLine(inner_, 1);
        addCircle(inner_);
        addLine(outer_, 1);
        for (const wchar_t* const tag : {L"A", L"B"}) {
            const auto definition = OdDbAttributeDefinition::createObject();
            definition->setTag(tag);
            definition->setTextString(tag);
            definition->setHeight(0.4);
            definition->setPosition(place(1));
            append(outer_, *definition);
        }
        addReference(outer_, inner_, 1);
        for (int i = 0; i < 60; ++i) addReference(model_, i % 3 == 0 ? inner_ : outer_, 30);
        for (int i = 0; i < 20; ++i) addEntity();
    }

    Sight sight() {
        switch (random_() % 4) {
            case 0:
                return {model_, {15, 10}, 40};
            case 1:
                return {model_, {between(5, 25), between(5, 15)}, between(0.5, 12)};
            case 2:
                return {paper_, {6, 4.5}, 10};
            default:
                return {paper_, {between(4, 8), between(3, 6)}, between(0.5, 4)};
        }
    }

    void edit() {
        const std::size_t position = database->undoPosition();
        switch (random_() % 20) {
            case 0:
            case 1:
                return addEntity();
            case 2:
                return addReference(model_, random_() % 2 == 0 ? inner_ : outer_, 30);
            case 3:
            case 4:
                return anyEntity(model_)->erase();
            case 5:
            case 6:
                (void)anyEntity(random_() % 4 == 0 ? paper_ : model_)
                    ->transformBy(OdGeMatrix3d::translation({between(-3, 3), between(-3, 3), 0}) *
                                  OdGeMatrix3d::scaling(between(0.7, 1.3)));
                return;
            case 7:
            case 8:
            case 9:
                return editAttribute();
            case 10:
                return anyEntity(model_)->setColor(OdCmColor::fromIndex(static_cast<int>(random_() % 9)));
            case 11:
                return anyEntity(model_)->setLayer(random_() % 2 == 0 ? L"WALLS" : L"NOTES");
            case 12:
                return anyEntity(random_() % 2 == 0 ? inner_ : outer_)->setVisibility(random_() % 2 == 0);
            case 13:
                return random_() % 2 == 0 ? addLine(random_() % 2 == 0 ? inner_ : outer_, 1.5) : addCircle(inner_);
            case 14: {
                const auto entity = anyEntity(random_() % 2 == 0 ? inner_ : outer_);
                (void)entity->transformBy(OdGeMatrix3d::translation({between(-6, 6), 0, 0}));
                return;
            }
            case 15:
                return editLayer();
            case 16:
                return editVariable();
            case 17:
                return editViewport();
            case 18:
                (void)database->redo();
                return;
            default:
                // Several changes are taken back at once, so that they can be done again.
                for (int i = 0; i < 3; ++i) edit();
                return database->undoForRedo(position > 4 ? position - random_() % 4 : position);
        }
    }

    const OdDbDatabasePtr database = OdDbDatabase::readFile(base::fromUtf8(TORVEL_SHEET));

  private:
    double between(double a, double b) { return std::uniform_real_distribution<double>(a, b)(random_); }
    OdGePoint3d place(double size) { return {between(0, size), between(0, size * 2 / 3), 0}; }

    OdDbObjectId append(OdDbObjectId block, OdDbEntity& entity) {
        return block.openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(&entity);
    }
    void addLine(OdDbObjectId block, double size) {
        const auto line = OdDbLine::createObject();
        line->setStartPoint(place(size));
        line->setEndPoint(place(size));
        append(block, *line);
    }
    void addCircle(OdDbObjectId block) {
        const auto circle = OdDbCircle::createObject();
        circle->setCenter(place(1));
        circle->setRadius(between(0.1, 0.6));
        append(block, *circle);
    }
    void addReference(OdDbObjectId space, OdDbObjectId block, double size) {
        const auto reference = OdDbBlockReference::createObject();
        reference->setBlockTableRecord(block);
        reference->setPosition(place(size));
        reference->setRotation(between(0, 6));
        const OdDbObjectId id = append(space, *reference);
        for (const OdDbObjectId each : block.openAs<OdDbBlockTableRecord>()->entities()) {
            const auto definition = each.openIf<OdDbAttributeDefinition>();
            if (!definition) continue;
            const auto attribute = OdDbAttribute::createObject();
            attribute->setAttributeFromBlock(*definition, reference->blockTransform());
            attribute->setTextString(L"value");
            id.openAs<OdDbBlockReference>(OdDb::forWrite)->appendAttribute(attribute.get());
        }
    }
    void addEntity() {
        switch (random_() % 5) {
            case 0: {
                const auto text = OdDbText::createObject();
                text->setTextString(L"some text");
                text->setHeight(between(0.2, 1));
                text->setPosition(place(30));
                append(model_, *text);
                return;
            }
            case 1: {
                const auto line = OdDbXline::createObject();
                line->setBasePoint(place(30));
                line->setUnitDir(OdGeVector3d(between(-1, 1), between(-1, 1), 0));
                append(model_, *line);
                return;
            }
            case 2: {
                const auto mask = OdDbWipeout::createObject();
                const OdGePoint3d corner = place(30);
                mask->setBoundary({corner, corner + OdGeVector3d(3, 0, 0), corner + OdGeVector3d(3, 2, 0)});
                append(model_, *mask);
                return;
            }
            case 3: {
                const auto point = OdDbPoint::createObject();
                point->setPosition(place(30));
                append(model_, *point);
                return;
            }
            default:
                return addLine(random_() % 3 == 0 ? paper_ : model_, 30);
        }
    }
    OdSmartPtr<OdDbEntity> anyEntity(OdDbObjectId block) {
        std::vector<OdDbObjectId> all;
        for (const OdDbObjectId id : block.openAs<OdDbBlockTableRecord>()->entities())
            if (!id.isKindOf(OdDbViewport::desc())) all.push_back(id);
        if (all.empty()) {
            addLine(block, 1);
            return anyEntity(block);
        }
        return all[random_() % all.size()].openAs<OdDbEntity>(OdDb::forWrite);
    }
    void editAttribute() {
        for (int tries = 0; tries < 10; ++tries) {
            const auto entity = anyEntity(model_);
            const auto* const reference = drawingdb::as<OdDbBlockReference>(*entity);
            if (!reference) continue;
            for (const OdDbObjectId id : reference->attributes()) {
                const auto attribute = id.openAs<OdDbAttribute>(OdDb::forWrite);
                if (random_() % 5 == 0) return attribute->erase();
                if (random_() % 3 == 0) return attribute->setInvisible(!attribute->isInvisible());
                attribute->setHeight(between(0.2, 0.9));
                attribute->setTextString(L"value " + std::to_wstring(random_() % 100));
            }
            return;
        }
    }
    void editLayer() {
        const auto layer = layers_[random_() % 2].openAs<OdDbLayerTableRecord>(OdDb::forWrite);
        switch (random_() % 3) {
            case 0:
                return layer->setIsOff(!layer->isOff());
            case 1:
                return layer->setIsFrozen(!layer->isFrozen());
            default:
                return layer->setColor(OdCmColor::fromIndex(static_cast<int>(random_() % 9)));
        }
    }
    void editVariable() {
        switch (random_() % 4) {
            case 0:
                return database->setHeaderInteger("$ATTMODE", 70, static_cast<int>(random_() % 3));
            case 1:
                return database->setHeaderInteger("$PDMODE", 70, static_cast<int>(random_() % 4 + 32));
            case 2:
                return database->setHeaderReal("$PDSIZE", 40, between(0.2, 3));
            default:
                return database->setHeaderReal("$TEXTSIZE", 40, between(0.2, 3));
        }
    }
    void editViewport() {
        for (const OdDbObjectId id : paper_.openAs<OdDbBlockTableRecord>()->entities())
            if (const auto viewport = id.openIf<OdDbViewport>(OdDb::forWrite); viewport && viewport->number() > 1)
                viewport->setView({between(10, 20), between(5, 15)}, between(5, 30));
    }

    std::mt19937 random_;
    const OdDbObjectId model_ = database->modelSpaceId(), paper_ = database->paperSpaceId();
    OdDbObjectId inner_, outer_;
    std::vector<OdDbObjectId> layers_;
};

TEST(Scene, ShowsAfterAnyEditWhatOneMadeAnewShows) {
    Editor editor(3);
    EntityGrids grids(*editor.database);
    Scene scene(grids);
    std::size_t seen = 0;
    for (int i = 0; i < 400; ++i) {
        editor.edit();
        // Sometimes somebody picks first, and sometimes nobody looks for a while.
        if (i % 7 == 0) grids.update();
        if (i % 5 == 4) continue;
        const Sight sight = editor.sight();
        const PixelBuffer kept = pictureOf(scene, sight, i % 3 == 0 ? 0 : 1000);
        Scene other(*editor.database);
        const PixelBuffer anew = pictureOf(other, sight);
        ASSERT_EQ(differences(kept, anew), 0u) << "after edit " << i;
        seen += inked(kept) > 50 ? 1 : 0;
    }
    EXPECT_GT(seen, 240u) << "most pictures must show something";
}

TEST(Scene, ShowsWhatAPlotShows) {
    // Kept lists are at most twice as fine as a plot's, so that pictures differ by what curves are told apart by.
    Editor editor(5);
    for (int i = 0; i < 200; ++i) editor.edit();
    Scene scene(*editor.database);
    for (int i = 0; i < 40; ++i) {
        const Sight sight = editor.sight();
        const PixelBuffer kept = pictureOf(scene, sight);
        Picture picture(kWidth, kHeight, Styles::kBackground);
        Plotter plotter(*editor.database, picture);
        plotter.drawSpace(sight.space, toPixels(sight), kHeight / sight.height);
        PixelBuffer plotted;
        plotted.clear(kWidth, kHeight, Styles::kBackground);
        Painter().paint(picture, plotted);
        std::size_t far = 0;
        for (std::size_t p = 0; p < kept.pixels.size(); ++p)
            for (const int shift : {0, 8, 16})
                far += std::abs(static_cast<int>(kept.pixels[p] >> shift & 0xFF) -
                                static_cast<int>(plotted.pixels[p] >> shift & 0xFF)) > 64
                           ? 1
                           : 0;
        EXPECT_LT(far, 20 + inked(plotted) / 20) << "view " << i;
    }
}

TEST(Scene, HidesAndDrawsOver) {
    const auto database = OdDbDatabase::createNew();
    const OdDbObjectId model = database->modelSpaceId();
    const auto line = OdDbLine::createObject();
    line->setStartPoint({-50, 0.5, 0});
    line->setEndPoint({50, 0.5, 0});
    const OdDbObjectId id = model.openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(line.get());
    Scene scene(*database);
    const Sight sight = {model, {0, 0}, kHeight};
    const PixelBuffer before = pictureOf(scene, sight);
    EXPECT_EQ(inked(before), 100u);
    scene.hide(id, true);
    PixelBuffer buffer = pictureOf(scene, sight);
    EXPECT_EQ(inked(buffer), 0u);

    // A preview in no drawing, then the line itself, chosen: a dashed one.
    const auto preview = OdDbCircle::createObject();
    preview->setRadius(40);
    const OdDbEntity* shown[] = {preview.get()};
    scene.drawOver(shown, host::Emphasis::kPlain, buffer);
    EXPECT_GT(inked(buffer), 200u);
    scene.hide(id, false);
    buffer = pictureOf(scene, sight);
    EXPECT_EQ(differences(before, buffer), 0u);
    const auto chosen = id.openAs<OdDbEntity>();
    shown[0] = chosen.get();
    scene.drawOver(shown, host::Emphasis::kSelected, buffer);
    const std::uint32_t* const row = buffer.pixels.data() + (kHeight / 2 - 1) * kWidth;
    const auto blue = std::count_if(row + 100, row + 200,
                                    [](std::uint32_t pixel) { return (pixel & 0xFF) > (pixel >> 16 & 0xFF) + 100; });
    EXPECT_GT(blue, 40);
    EXPECT_LT(blue, 80);
    EXPECT_EQ(scene.update(), false);
}

}  // namespace
}  // namespace host
