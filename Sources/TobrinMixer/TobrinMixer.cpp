#include "TobrinMixer.h"
