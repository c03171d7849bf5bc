// Cards, channels and glasses as people read them.
#pragma once

#include <boost/json/value.hpp>
#include <string>

#include "base/Output.h"

namespace ctl {

// "on", "2.5 V", "unknown"; behind it "(assumed)", "(pending)" or "(stale)" where it is so.
Cell ValueCell(const boost::json::value& channel);

// Address, kind, name, state, values in short: a line a card.
std::string CardsText(const boost::json::value& cards, const Paint& paint);

// Id, name, value: a line a channel; or the glass.
std::string CardText(const boost::json::value& card, const Paint& paint);

// One line of that.
std::string ChannelText(const boost::json::value& channel, const Paint& paint);

// What a display shows, in a frame.
std::string GlassText(const boost::json::value& glass);

}  // namespace ctl
