#include "scan/ZTSecondaryScanState.h"

ZTSecondaryScanState &ZTSecondaryScanState::processWide()
{
    // Used only from the one scanning thread, as the camera loop is built.
    static ZTSecondaryScanState s_state;
    return s_state;
}
