// (en construction)
#include <gtest/gtest.h>
