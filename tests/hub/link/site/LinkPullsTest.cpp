#include "LinkPulls.h"

namespace hub::link {

TEST_F(LinkPulls, OutputsAreKeptThroughTwentyAccidents) { RunPulls(20, 1); }

}  // namespace hub::link
