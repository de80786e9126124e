def check(case):
    (ray,) = case.after.entities("RAY")
    assert ray.owner == "1B" and ray.integer(67) == 1
