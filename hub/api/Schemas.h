// The shapes of answers as JSON schemas, by the names that the table's rows use.
#pragma once

#include <array>
#include <string_view>

namespace hub::api {

struct Schema {
  std::string_view name;
  std::string_view text;  // JSON
};

inline constexpr std::array<Schema, 25> kSchemas{{
    {"Bus", R"({"type":"object",
      "required":["id", "name", "seq", "daemon", "adapter", "broker", "pace", "polling", "virtual"],
      "properties":{
        "id":{"type":"string", "pattern":"^[0-9a-f]{8}$"},
        "name":{"type":["string", "null"]},
        "seq":{"type":"integer", "description":"of the last change"},
        "daemon":{"type":"object", "required":["state", "version", "since", "waiting_for"],
          "properties":{
            "state":{"enum":["absent", "waiting", "up"]},
            "version":{"type":["string", "null"]},
            "since":{"type":["string", "null"], "format":"date-time"},
            "waiting_for":{"enum":["cae", "io", "mon", null],
                           "description":"the port that another program holds"}}},
        "adapter":{"type":"object", "required":["state", "device", "version"],
          "properties":{
            "state":{"enum":["unknown", "down", "up"]},
            "device":{"type":["string", "null"]},
            "version":{"type":["string", "null"]}}},
        "broker":{"type":["object", "null"], "required":["state", "host", "detail"],
          "description":"null where none is set up",
          "properties":{
            "state":{"enum":["connecting", "up", "refused"]},
            "host":{"type":"string"},
            "detail":{"type":["string", "null"]}}},
        "pace":{"type":["integer", "null"], "minimum":1, "maximum":100},
        "polling":{"type":["boolean", "null"]},
        "virtual":{"type":"boolean"}}})"},
    {"Cards", R"({"type":"object", "required":["cards"],
      "properties":{"cards":{"type":"array", "items":{"$ref":"#/components/schemas/Card"}}}})"},
    {"Card", R"({"type":"object",
      "required":["address", "kind", "name", "state", "keep", "polling", "channels", "glass",
                  "codes"],
      "properties":{
        "address":{"type":"string", "pattern":"^[0-9A-F]$"},
        "kind":{"enum":["digital-output", "digital-input", "servo", "motor", "analogue-input",
                        "keys", "lcd", "ir", "silent", "unknown"]},
        "name":{"type":["string", "null"]},
        "state":{"enum":["present", "silent", "absent"]},
        "keep":{"type":["boolean", "null"], "description":"whether its outputs are restored"},
        "polling":{"type":["boolean", "null"]},
        "channels":{"type":"array", "items":{"$ref":"#/components/schemas/Channel"}},
        "glass":{"anyOf":[{"$ref":"#/components/schemas/Glass"}, {"type":"null"}]},
        "codes":{"type":["object", "null"], "additionalProperties":{"type":"string"},
                 "description":"infrared codes that have a name, by their bytes"}}})"},
    {"Channel", R"({"type":"object",
      "required":["id", "name", "type", "value", "raw", "known", "assumed", "pending", "since",
                  "unit", "min", "max"],
      "properties":{
        "id":{"type":"string", "pattern":"^[0-9A-F]\\.(0|[1-9][0-9]?)$"},
        "name":{"type":["string", "null"]},
        "type":{"enum":["switch", "contact", "position", "drive", "level", "key", "code"]},
        "value":{"type":["boolean", "number", "string", "null"],
                 "description":"null until it is known"},
        "raw":{"type":["integer", "null"], "minimum":0, "maximum":255,
               "description":"what is on the bus: the line's bit, or the byte"},
        "known":{"type":"boolean"},
        "assumed":{"type":"boolean", "description":"not sent yet in this session of the daemon"},
        "pending":{"type":"boolean", "description":"waits for the adapter"},
        "since":{"type":["string", "null"], "format":"date-time"},
        "unit":{"type":["string", "null"]},
        "min":{"type":["number", "null"]},
        "max":{"type":["number", "null"]}}})"},
    {"Glass", R"({"type":"object", "required":["rows", "known", "at", "light", "cursor", "blink"],
      "properties":{
        "rows":{"type":"array", "items":{"type":"string"}},
        "known":{"type":"boolean", "description":"it was cleared since the hub has been watching"},
        "at":{"type":["object", "null"], "required":["row", "column"],
          "description":"behind the last character that was written",
          "properties":{"row":{"type":"integer"}, "column":{"type":"integer"}}},
        "light":{"type":["boolean", "null"]},
        "cursor":{"type":["boolean", "null"]},
        "blink":{"type":["boolean", "null"]}}})"},
    {"Event", R"({"type":"object", "required":["seq", "time", "card", "event_type", "code"],
      "properties":{
        "seq":{"type":"integer"},
        "time":{"type":"string", "format":"date-time"},
        "card":{"type":"string", "pattern":"^[0-9A-F]$"},
        "event_type":{"enum":["press", "release", "left", "right"]},
        "code":{"type":["integer", "null"], "minimum":1, "maximum":63}}})"},
    {"Snapshot", R"({"type":"object", "required":["seq", "bus", "cards", "page", "events", "lost"],
      "properties":{
        "seq":{"type":"integer"},
        "bus":{"$ref":"#/components/schemas/Bus"},
        "cards":{"type":"array", "items":{"$ref":"#/components/schemas/Card"}},
        "page":{"$ref":"#/components/schemas/Page"},
        "events":{"type":"array", "items":{"$ref":"#/components/schemas/Event"}},
        "lost":{"type":"integer", "minimum":0}}})"},
    {"Changes", R"({"type":"object",
      "required":["after", "seq", "bus", "page", "cards", "channels", "events", "lost"],
      "properties":{
        "after":{"type":"integer"},
        "seq":{"type":"integer"},
        "bus":{"anyOf":[{"$ref":"#/components/schemas/Bus"}, {"type":"null"}]},
        "page":{"anyOf":[{"$ref":"#/components/schemas/Page"}, {"type":"null"}]},
        "cards":{"type":"array", "items":{"$ref":"#/components/schemas/Card"}},
        "channels":{"type":"array", "items":{"$ref":"#/components/schemas/Channel"}},
        "events":{"type":"array", "items":{"$ref":"#/components/schemas/Event"}},
        "lost":{"type":"integer", "minimum":0, "description":"events that this reader missed"}}})"},
    {"CardSettings", R"({"type":"object", "additionalProperties":false,
      "properties":{
        "end_a":{"$ref":"#/components/schemas/Bytes"},
        "end_b":{"$ref":"#/components/schemas/Bytes"},
        "silent_range":{"$ref":"#/components/schemas/Bytes"},
        "mask":{"type":["integer", "null"], "minimum":0, "maximum":63},
        "self_test":{"type":["boolean", "null"]},
        "init_light":{"type":["boolean", "null"]}}})"},
    {"Bytes", R"({"type":"array", "description":"null where the card was not asked",
      "items":{"type":["integer", "null"], "minimum":0, "maximum":255}})"},
    {"Lines", R"({"type":"object", "required":["lines"],
      "properties":{"lines":{"type":"array", "items":{"type":"string"}}}})"},
    {"History", R"({"type":"object", "required":["channel", "unit", "step_ms", "points"],
      "properties":{
        "channel":{"type":"string"},
        "unit":{"type":["string", "null"]},
        "step_ms":{"type":"integer", "minimum":0, "description":"0: values as they came"},
        "points":{"type":"array", "items":{"type":"array", "minItems":4, "maxItems":4,
                                           "items":{"type":"number"}}}}})"},
    {"Journal", R"({"type":"object", "required":["entries", "lost"],
      "properties":{
        "entries":{"type":"array", "items":{"type":"object",
          "required":["seq", "time", "kind", "text", "by"],
          "properties":{
            "seq":{"type":"integer"},
            "time":{"type":"string", "format":"date-time"},
            "kind":{"type":"string"},
            "text":{"type":"string"},
            "by":{"type":["string", "null"]}}}},
        "lost":{"type":"integer", "minimum":0}}})"},
    {"Names", R"({"type":"object", "additionalProperties":false,
      "properties":{
        "bus":{"type":["string", "null"]},
        "cards":{"type":"object", "additionalProperties":{"type":["string", "null"]}},
        "channels":{"type":"object", "additionalProperties":{"type":["string", "null"]}},
        "infrared":{"type":"object", "additionalProperties":{"type":["string", "null"]}}}})"},
    {"Setup", R"({"type":"object", "additionalProperties":false,
      "properties":{
        "cards":{"type":"object", "additionalProperties":{
          "type":["object", "null"], "additionalProperties":false,
          "properties":{
            "keep":{"type":["boolean", "null"]},
            "signed":{"type":["boolean", "null"]},
            "rows":{"type":["integer", "null"], "minimum":1, "maximum":8},
            "columns":{"type":["integer", "null"], "minimum":1, "maximum":80}}}},
        "channels":{"type":"object", "additionalProperties":{
          "type":["object", "null"], "additionalProperties":false,
          "properties":{
            "unit":{"type":["string", "null"]},
            "min":{"type":["number", "null"]},
            "max":{"type":["number", "null"]},
            "decimals":{"type":["integer", "null"], "minimum":0, "maximum":6},
            "hysteresis":{"type":["number", "null"], "minimum":0},
            "active":{"enum":["high", "low", null]},
            "as":{"enum":["switch", "light", "fan", null]},
            "device_class":{"type":["string", "null"]}}}}}})"},
    {"Page", R"({"type":"object", "additionalProperties":false,
      "required":["order", "hidden", "groups"],
      "properties":{
        "order":{"$ref":"#/components/schemas/Addresses"},
        "hidden":{"$ref":"#/components/schemas/Addresses"},
        "groups":{"type":"array", "maxItems":16, "items":{"type":"object",
          "required":["name", "cards"], "additionalProperties":false,
          "properties":{
            "name":{"type":"string", "minLength":1, "maxLength":64},
            "cards":{"$ref":"#/components/schemas/Addresses"}}}}}})"},
    {"Addresses", R"({"type":"array", "uniqueItems":true,
      "items":{"type":"string", "pattern":"^[0-9A-F]$"}})"},
    {"VirtualBus", R"({"type":"object",
      "required":["device", "cable", "frames", "replies", "lost", "shaped", "faults", "cards"],
      "properties":{
        "device":{"type":["string", "null"]},
        "cable":{"type":"boolean", "description":"whether it is plugged"},
        "frames":{"type":"integer"},
        "replies":{"type":"integer"},
        "lost":{"type":"integer"},
        "shaped":{"type":"integer", "description":"replies that a fault has changed"},
        "faults":{"type":"array", "items":{"type":"string"},
                  "description":"those that are on, as the lines that switch them on"},
        "cards":{"type":"array", "items":{"type":"object",
          "required":["address", "kind", "plugged", "values"],
          "properties":{
            "address":{"type":"string", "pattern":"^[0-9A-F]$"},
            "kind":{"type":"string"},
            "plugged":{"type":"boolean"},
            "values":{"anyOf":[{"$ref":"#/components/schemas/Bytes"}, {"type":"null"}],
                      "description":"of an input card: what the world outside does to it"}}}}}})"},
    {"Backup", R"({"type":"object", "additionalProperties":false,
      "required":["version", "names", "setup", "page"],
      "properties":{
        "version":{"type":"integer", "minimum":1, "maximum":1},
        "names":{"$ref":"#/components/schemas/Names"},
        "setup":{"$ref":"#/components/schemas/Setup"},
        "page":{"$ref":"#/components/schemas/Page"}}})"},
    {"Who", R"({"type":"object", "required":["account", "role"],
      "properties":{
        "account":{"type":["string", "null"]},
        "role":{"enum":["view", "use", "admin", null]}}})"},
    {"Ticket", R"({"type":"object", "required":["ticket"],
      "properties":{"ticket":{"type":"string"}}})"},
    {"Accounts", R"({"type":"object", "required":["accounts"],
      "properties":{"accounts":{"type":"array", "items":{"type":"object",
        "required":["account", "role"],
        "properties":{
          "account":{"type":"string"},
          "role":{"enum":["view", "use", "admin"]}}}}}})"},
    {"Tokens", R"({"type":"object", "required":["tokens"],
      "properties":{"tokens":{"type":"array", "items":{"type":"object",
        "required":["name", "role"],
        "properties":{
          "name":{"type":"string"},
          "role":{"enum":["view", "use", "admin"]}}}}}})"},
    {"Token", R"({"type":"object", "required":["name", "role", "token"],
      "properties":{
        "name":{"type":"string"},
        "role":{"enum":["view", "use", "admin"]},
        "token":{"type":"string"}}})"},
    {"Problem", R"({"type":"object", "required":["title", "status", "detail", "where"],
      "properties":{
        "title":{"type":"string", "description":"the same for the same status"},
        "status":{"type":"integer"},
        "detail":{"type":"string", "description":"what is wrong, and what would be right"},
        "where":{"type":["string", "null"], "description":"the field"},
        "retry_after":{"type":"integer", "description":"seconds"}}})"},
}};

}  // namespace hub::api
