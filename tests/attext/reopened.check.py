"""Chosen, the format disables the template's field and its button; a dialog that opens again in it the button alone."""


def check(case):
    chosen, reopened = case.errors.split("Attribute Extraction> show\n")[1:]
    assert "[ Template File ]  (disabled)" in chosen and 'Template File = ""  (disabled)' in chosen, chosen
    assert "[ Template File ]  (disabled)" in reopened and 'Template File = ""\n' in reopened, reopened
    assert (case.folder / "out.dxx").read_bytes().count(b"EOF\r\n") == 1
