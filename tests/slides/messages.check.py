import re


def check(case):
    def not_found(name):
        return f"\r\n'{name}': Can't find file in search path:\r\nHERE (current directory)\r\nnowhere\r\nbeyond\r\n\n"

    here = re.compile(rf"^.*{case.folder.name} \(current directory\)", re.MULTILINE)
    expected = [not_found("sofa"), not_found("sofa.old"), not_found("here/sofa"), not_found("sofa"),
                "Invalid slide file name 'room(chair'\n", not_found("(chair)"),
                "\n", "\n", "No slide in library\n", "\n",
                "The slide is drawn only in part: it has an undefined record, 0x90 at byte 236.\n"]
    assert here.sub("HERE (current directory)", case.output) == "".join(expected), case.output
