import importlib.util
import pathlib

place = pathlib.Path(__file__).with_name("polygon.check.py")
spec = importlib.util.spec_from_file_location("polygon", place)
polygon = importlib.util.module_from_spec(spec)
spec.loader.exec_module(polygon)


def check(case):
    flat = [(40, 0, 0), (50, 0, 0), (50, 8, 0), (40, 8, 0)]
    polygon.expect(case.after.entities("WIPEOUT"), flat, flat,
                   [(100, 0, 0), (100, 10, 0), (100, 10, 6), (100, 0, 6)],
                   [(40, 20, 0), (50, 20, 0), (50, 28, 0)])
    assert all(w.text(8) == "MASKS" for w in case.after.entities("WIPEOUT"))
    left = [p.handle for p in case.after.entities("LWPOLYLINE")]
    assert [p.handle for p in case.before.entities("LWPOLYLINE") if p.handle not in left] == ["10E"]
    assert case.after.table("LAYER")[-1].text(2) == "MASKS"
