#include "runtime/CVelumFrameHost.h"

CVelumFrameHost* gFrameHost = nullptr;
