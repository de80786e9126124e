import pathlib
import runpy

check_made = runpy.run_path(str(pathlib.Path(__file__).with_name("block_made.check.py")))["check"]


def check(case):
    check_made(case)
    # The session has its own, and the drawing's are carried: the attributes were asked for, without a dialog.
    assert (case.after.variable("$ATTDIA"), case.after.variable("$ATTREQ")) == (["1"], ["0"])
