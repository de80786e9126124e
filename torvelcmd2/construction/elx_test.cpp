#include "torvelcmd2/construction/elx_test.h"

namespace torvel {

CMD_RUNSTATUS TestCmd::run() {
    setRunStatus(kCommandRunning);
    const RunFrame frame = reachDocument();
    OdString text;
    const bool entered = frame.input->getString(text);
    if (entered) frame.input->printMessage(L"Inputed Text is %s.", text.c_str());
    return setRunStatus(entered ? kCommandFinished : kCommandCancelled);
}

}  // namespace torvel
