"""The references of one block stand together; the line is passed over; the names are remembered."""


def check(case):
    lines = (case.folder / "out.txt").read_bytes().split(b"\r\n")
    x = [f"{case.before.by_handle(handle).real(10):8.2f}," for handle in ("80", "90", "A8")]
    assert [line.decode() for line in lines] == [
        f" 'DOOR',{x[0]:>8}        'D3'", f" 'DOOR',{x[1]:>8}        'B1'", f" 'GATE',{x[2]:>8}          ''", ""], lines
    assert case.output == "\n3 objects in extract file.\n\n", case.output
    shown = case.errors.split("Attribute Extraction> show\n")
    assert "Number Found = \"4\"  (read only)" in shown[1]
    assert f'Template File = "{full(case, "doors.txt")}"' in shown[1], shown[1]
    assert f'Output File = "{full(case, "out.txt")}"' in shown[1], shown[1]
    # In the next run of the command the output is remembered, the selection and the template are not.
    assert "Number Found = \"0\"" in shown[2] and 'Template File = ""' in shown[2]
    assert f'Output File = "{full(case, "out.txt")}"' in shown[2], shown[2]
    settings = (case.folder / "profile.ini").read_text(encoding="utf-8").replace("\\\\", "\\")
    assert "outputFileName=" + full(case, "out.txt") in settings, settings
    assert "folder=" + full(case, "")[:-1] + "\n" in settings, settings


def full(case, name):
    """The path as the program writes it, which under Wine begins with a drive."""
    path = str(case.folder / name) + ("/" if not name else "")
    return "Z:" + path.replace("/", "\\") if "> show" in case.errors and "Z:\\" in case.errors else path
