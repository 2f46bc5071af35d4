#include "text/WhiteSpace.h"
