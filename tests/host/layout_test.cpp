#include <gtest/gtest.h>
#include "host/records.h"
TEST(HostRecords, PlotRecordSpansToParamInfo) { EXPECT_EQ(sizeof(PlotRecord), 0xC00u); }
