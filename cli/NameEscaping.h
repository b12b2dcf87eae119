#pragma once

// The escaping of names belongs to the reports; the command line quotes names in its messages
// the same way.
#include "reports/NameEscaping.h"
