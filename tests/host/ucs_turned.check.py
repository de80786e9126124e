import math


def check(case):
    ray, = case.after.entities("RAY")
    assert math.dist(ray.point(11), (0, 0, 1)) < 1e-12, ray.point(11)
