def check(case):
    (ray,) = case.after.entities("RAY")
    assert (ray.point(10), ray.point(11)) == ((1, 1, 0), (0, 1, 0))
