#include "runtime/view/CVelumFrameHost.h"

CVelumFrameHost* gFrameHost = nullptr;
