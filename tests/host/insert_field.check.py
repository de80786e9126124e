def check(case):
    definition = case.after.by_handle("44")
    taken, typed = [reference.attributes[0] for reference in case.after.entities("INSERT")[-2:]]
    assert (taken.text(2), taken.text(1), typed.text(1)) == ("SIZE", "Size 7 by 7!", "40x40")
    assert typed.all(360) == []
    assert taken.text(360) != definition.text(360)
    dictionary = case.after.by_handle(taken.text(360))
    field = case.after.by_handle(case.after.by_handle(dictionary.text(360)).text(360))
    assert field.section("AcDbField").text(1) == "_text"
    listed = case.after.objects("FIELDLIST")[0].section("AcDbIdSet").all(330)
    assert {field.handle, *field.all(360)} <= set(listed), listed
