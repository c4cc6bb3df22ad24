// Memory for many small objects: what each thread is giving back.
#include "cmpbase/QORSlabs.h"

constinit thread_local QORSlabs::Returning* QORSlabs::_returning = nullptr;
