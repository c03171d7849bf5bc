// [names], [channel."A.n"] and [card.A]: what people have settled about the bus.
#pragma once

#include "model/Settings.h"
#include "settings/Section.h"

namespace hub::settings {

model::Settings TakeNames(Section& file);

}  // namespace hub::settings
