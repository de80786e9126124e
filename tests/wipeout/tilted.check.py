import importlib.util
import pathlib

place = pathlib.Path(__file__).with_name("polygon.check.py")
spec = importlib.util.spec_from_file_location("polygon", place)
polygon = importlib.util.module_from_spec(spec)
spec.loader.exec_module(polygon)


def check(case):
    polygon.expect(case.after.entities("WIPEOUT"), [(10, 0, 5), (10, 4, 5), (7, 4, 9), (7, 0, 9)])
