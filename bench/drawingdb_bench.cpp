// The steps of the drawing database, one by one, on drawings of 1,000 to 100,000 block references. The counter "each"
// is the time for one of what the step does many times; it should stay the same from row to row.
#include <algorithm>
#include <benchmark/benchmark.h>
#include <random>
#include <vector>

#include "bench/make_drawing.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/database.h"
#include "drawingdb/spline.h"

namespace {

constexpr auto kPerReference = static_cast<std::int64_t>(bench::kAttributesPerReference);

// The drawing with as many references as the run wants, made once in a row of runs.
const std::string& drawing(const benchmark::State& state) {
    static std::int64_t madeFor = -1;
    static std::string bytes;
    if (madeFor != state.range(0)) {
        madeFor = state.range(0);
        bytes = bench::makeDrawing(static_cast<std::size_t>(madeFor));
    }
    return bytes;
}

OdDbDatabasePtr load(const benchmark::State& state) { return OdDbDatabase::readBytes(drawing(state), L"bench.dxf"); }

void count(benchmark::State& state, std::int64_t pieces) {
    using benchmark::Counter;
    state.counters["each"] =
        Counter(static_cast<double>(pieces), Counter::kIsIterationInvariantRate | Counter::kInvert);
}

std::vector<OdDbObjectId> referencesOf(const OdDbDatabasePtr& database) {
    std::vector<OdDbObjectId> references;
    const auto space = database->modelSpaceId().openAs<OdDbBlockTableRecord>();
    for (OdDbObjectId id : space->entities()) references.push_back(id);
    return references;
}

// Gives every attribute a new text; returns how many there are.
std::int64_t changeEverything(const OdDbDatabasePtr& database) {
    std::int64_t changed = 0;
    for (OdDbObjectId id : referencesOf(database)) {
        const auto reference = id.openAs<OdDbBlockReference>();
        for (OdDbObjectId attribute : reference->attributes()) {
            attribute.openAs<OdDbAttribute>(OdDb::forWrite)->setTextString(L"changed");
            ++changed;
        }
    }
    return changed;
}

void Load(benchmark::State& state) {
    const std::string& bytes = drawing(state);
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        std::string copy = bytes;
        state.ResumeTiming();
        OdDbDatabasePtr database = OdDbDatabase::readBytes(std::move(copy), L"bench.dxf");
        state.PauseTiming();
        database.reset();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
    count(state, state.range(0));
}

void OpenEverything(benchmark::State& state) {
    const OdDbDatabasePtr database = load(state);
    std::int64_t opened = 0;
    for ([[maybe_unused]] auto _ : state) {
        opened = 0;
        const auto space = database->modelSpaceId().openAs<OdDbBlockTableRecord>();
        for (OdDbObjectId id : space->entities()) {
            const auto reference = id.openAs<OdDbBlockReference>();
            benchmark::DoNotOptimize(reference->position());
            ++opened;
            for (OdDbObjectId attribute : reference->attributes()) {
                benchmark::DoNotOptimize(attribute.openAs<OdDbAttribute>()->textString());
                ++opened;
            }
        }
    }
    count(state, opened);
}

void SaveUnchanged(benchmark::State& state) {
    const OdDbDatabasePtr database = load(state);
    std::size_t size = 0;
    for ([[maybe_unused]] auto _ : state) size = database->writeBytes().size();
    if (size != drawing(state).size()) state.SkipWithError("the drawing has changed");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size));
    count(state, state.range(0));
}

void ChangeEverything(benchmark::State& state) {
    const OdDbDatabasePtr database = load(state);
    for ([[maybe_unused]] auto _ : state) {
        database->setUndoMark();
        changeEverything(database);
        state.PauseTiming();
        database->undoBack();
        state.ResumeTiming();
    }
    count(state, state.range(0) * kPerReference);
}

void UndoEverything(benchmark::State& state) {
    const OdDbDatabasePtr database = load(state);
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        database->setUndoMark();
        changeEverything(database);
        state.ResumeTiming();
        database->undoBack();
    }
    if (database->writeBytes() != drawing(state)) state.SkipWithError("undo has not brought the drawing back");
    count(state, state.range(0) * kPerReference);
}

void DeepClone(benchmark::State& state) {
    const OdDbDatabasePtr database = load(state);
    const std::vector<OdDbObjectId> references = referencesOf(database);
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        database->setUndoMark();
        state.ResumeTiming();
        OdDbIdMapping mapping;
        database->deepCloneObjects(references, database->modelSpaceId(), mapping);
        state.PauseTiming();
        if (mapping.pairs().size() < references.size() * (1 + bench::kAttributesPerReference))
            state.SkipWithError("not everything was cloned");
        database->undoBack();
        state.ResumeTiming();
    }
    count(state, state.range(0));
}

void LookUpHandles(benchmark::State& state) {
    const OdDbDatabasePtr database = load(state);
    std::vector<OdDbHandle> handles;
    for (OdDbObjectId id : referencesOf(database)) handles.push_back(id.handle());
    std::shuffle(handles.begin(), handles.end(), std::mt19937(1));
    for ([[maybe_unused]] auto _ : state)
        for (OdDbHandle handle : handles) benchmark::DoNotOptimize(database->getObjectId(handle));
    count(state, state.range(0));
}

// A spline of eight pieces in as many parts of equal length as a division can have, measured anew each time.
void DivideSpline(benchmark::State& state) {
    std::vector<double> knots(4, 0);
    std::vector<OdGePoint3d> points;
    for (int i = 0; i < 11; ++i) points.emplace_back(i * 10, i % 2 * 25, i % 3);
    for (int i = 1; i < 8; ++i) knots.push_back(i);
    knots.insert(knots.end(), 4, 8);
    for ([[maybe_unused]] auto _ : state) {
        const auto spline = OdDbSpline::createObject();
        spline->setNurbs(3, knots, points);
        const double part = spline->distAtParam(spline->endParam()) / static_cast<double>(state.range(0));
        for (std::int64_t i = 1; i < state.range(0); ++i)
            benchmark::DoNotOptimize(spline->pointAtDist(static_cast<double>(i) * part));
    }
    count(state, state.range(0));
}

void inSizes(benchmark::internal::Benchmark* step) {
    step->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->ArgName("references");
}
BENCHMARK(Load)->Apply(inSizes);
BENCHMARK(OpenEverything)->Apply(inSizes);
BENCHMARK(SaveUnchanged)->Apply(inSizes);
BENCHMARK(ChangeEverything)->Apply(inSizes);
BENCHMARK(UndoEverything)->Apply(inSizes);
BENCHMARK(DeepClone)->Apply(inSizes);
BENCHMARK(LookUpHandles)->Apply(inSizes);
BENCHMARK(DivideSpline)->Arg(32767)->Unit(benchmark::kMillisecond)->ArgName("parts");

}  // namespace

BENCHMARK_MAIN();
