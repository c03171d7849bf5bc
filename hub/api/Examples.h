// Answers as the table shows them.
#pragma once

#include <string_view>

namespace hub::api::examples {

inline constexpr std::string_view kBus = R"({
  "id":"3f9a21c0", "name":"bench", "seq":1234,
  "daemon":{"state":"up", "version":"1.20", "since":"2026-11-21T12:00:00.000Z",
            "waiting_for":null},
  "adapter":{"state":"up", "device":"/dev/ttyUSB0", "version":"v1.2"},
  "broker":{"state":"up", "host":"192.168.1.5", "detail":null},
  "pace":50, "polling":true, "virtual":true, "hub":{"version":"1.20"}})";

inline constexpr std::string_view kDisplay = R"({
  "address":"E", "kind":"lcd", "name":null, "state":"present", "keep":null, "polling":null,
  "channels":[],
  "glass":{"rows":["                    ", "   Tail of the cat  ", "                    ",
                   "                    "],
           "known":true, "at":{"row":1, "column":18}, "light":true, "cursor":false, "blink":false},
  "codes":null})";

inline constexpr std::string_view kServoCard = R"({
  "address":"0", "kind":"servo", "name":"Arm", "state":"present", "keep":true, "polling":null,
  "channels":[
    {"id":"0.0", "name":"Elbow", "type":"position", "value":128, "raw":128, "known":true,
     "assumed":false, "pending":false, "since":"2026-11-21T12:00:00.000Z", "unit":null,
     "min":0, "max":255, "decimals":null}],
  "glass":null, "codes":null})";

inline constexpr std::string_view kRelays = R"({
  "address":"5", "kind":"digital-output", "name":"Relays", "state":"present", "keep":true,
  "polling":null,
  "channels":[
    {"id":"5.0", "name":"Lamp", "type":"switch", "value":true, "raw":0, "known":true,
     "assumed":false, "pending":false, "since":"2026-11-21T12:00:00.000Z", "unit":null,
     "min":null, "max":null, "decimals":null}],
  "glass":null, "codes":null})";

inline constexpr std::string_view kCards = R"({"cards":[{
  "address":"5", "kind":"digital-output", "name":"Relays", "state":"present", "keep":true,
  "polling":null,
  "channels":[
    {"id":"5.0", "name":"Lamp", "type":"switch", "value":true, "raw":0, "known":true,
     "assumed":false, "pending":false, "since":"2026-11-21T12:00:00.000Z", "unit":null,
     "min":null, "max":null, "decimals":null}],
  "glass":null, "codes":null}]})";

inline constexpr std::string_view kInputs = R"({
  "address":"3", "kind":"digital-input", "name":null, "state":"present", "keep":null,
  "polling":false,
  "channels":[
    {"id":"3.0", "name":"Door", "type":"contact", "value":null, "raw":null, "known":false,
     "assumed":false, "pending":false, "since":null, "unit":null, "min":null, "max":null,
     "decimals":null}],
  "glass":null, "codes":null})";

inline constexpr std::string_view kLamp = R"({
  "id":"5.0", "name":"Lamp", "type":"switch", "value":true, "raw":0, "known":true,
  "assumed":false, "pending":false, "since":"2026-11-21T12:00:00.000Z", "unit":null,
  "min":null, "max":null, "decimals":null})";

inline constexpr std::string_view kCode = R"({
  "id":"9.0", "name":null, "type":"code", "value":"434F", "raw":null, "known":true,
  "assumed":false, "pending":false, "since":"2026-11-21T12:00:00.000Z", "unit":null,
  "min":null, "max":null, "decimals":null})";

inline constexpr std::string_view kBoard = R"({
  "board":"shed", "state":"online", "since":"2026-11-21T12:00:00.000Z",
  "id":"8c01d2ee", "name":"Shed", "version":"0.3.0",
  "daemon":{"state":"up", "version":"1.20"},
  "adapter":{"state":"up", "device":"/dev/ttyUSB0", "version":"v1.2"},
  "virtual":false, "ignored":0, "ignored_why":null})";

inline constexpr std::string_view kBoards = R"({"boards":[{
  "board":"shed", "state":"stale", "since":"2026-11-21T12:00:00.000Z",
  "id":"8c01d2ee", "name":"Shed", "version":"0.3.0",
  "daemon":{"state":"up", "version":"1.20"},
  "adapter":{"state":"up", "device":"/dev/ttyUSB0", "version":"v1.2"},
  "virtual":false, "ignored":2, "ignored_why":"a value that is none"}]})";

inline constexpr std::string_view kBoardLamp = R"({
  "id":"5.0", "name":"Lamp", "type":"switch", "value":true, "raw":null, "known":true,
  "assumed":false, "pending":false, "since":"2026-11-21T12:00:00.000Z",
  "unit":null, "min":null, "max":null, "decimals":null, "stale_since":null})";

inline constexpr std::string_view kBoardRelays = R"({
  "address":"5", "kind":"digital-output", "name":"Relays", "state":"present", "keep":null,
  "polling":null, "glass":null, "codes":null, "stale_since":null,
  "channels":[{
    "id":"5.0", "name":"Lamp", "type":"switch", "value":true, "raw":null, "known":true,
    "assumed":false, "pending":false, "since":"2026-11-21T12:00:00.000Z",
    "unit":null, "min":null, "max":null, "decimals":null, "stale_since":null}]})";

inline constexpr std::string_view kBoardDisplay = R"({
  "address":"E", "kind":"lcd", "name":null, "state":"present", "keep":null, "polling":null,
  "channels":[], "codes":null, "stale_since":null,
  "glass":{"rows":["   Tail of the cat  ", "                    "], "known":true, "at":null,
           "light":true, "cursor":false, "blink":false}})";

inline constexpr std::string_view kBoardCards = R"({"cards":[{
  "address":"E", "kind":"lcd", "name":null, "state":"silent", "keep":null, "polling":null,
  "channels":[], "codes":null, "stale_since":"2026-11-21T12:00:00.000Z",
  "glass":{"rows":["                    "], "known":true, "at":null,
           "light":null, "cursor":null, "blink":null}}]})";

inline constexpr std::string_view kBoardCode = R"({
  "id":"9.0", "name":null, "type":"code", "value":null, "raw":null, "known":false,
  "assumed":false, "pending":false, "since":null, "unit":null, "min":null, "max":null,
  "decimals":null, "stale_since":null})";

inline constexpr std::string_view kSnapshot = R"({
  "seq":1234,
  "bus":{"id":"3f9a21c0", "name":"bench", "seq":1234,
         "daemon":{"state":"absent", "version":null, "since":null, "waiting_for":null},
         "adapter":{"state":"unknown", "device":null, "version":null},
         "broker":null,
         "pace":null, "polling":null, "virtual":false, "hub":{"version":"1.20"}},
  "cards":[],
  "page":{"order":[], "hidden":[], "groups":[]},
  "events":[{"seq":1230, "time":"2026-11-21T12:00:00.000Z", "card":"8", "event_type":"press",
             "code":5}],
  "lost":0})";

inline constexpr std::string_view kServoSettings =
    R"({"end_a":[16, null, null, null, null, null], "end_b":[240, null, null, null, null, null]})";

inline constexpr std::string_view kLines = R"({"lines":["CIA: DRIVER VERSION 1.20"]})";

inline constexpr std::string_view kHistory = R"({
  "channel":"F.3", "unit":"V", "step_ms":60000, "points":[[1795262400000, 2.5, 2.4, 2.6]]})";

inline constexpr std::string_view kJournal = R"({
  "entries":[{"seq":17, "time":"2026-11-21T12:00:00.000Z", "kind":"command",
              "text":"5.0 (Lamp): on", "by":"operator"}],
  "lost":0})";

inline constexpr std::string_view kNames =
    R"({"bus":"bench", "cards":{"5":"Relays"}, "channels":{"5.0":"Lamp"},
  "infrared":{"434F":"TV on"}})";

inline constexpr std::string_view kSetup = R"({
  "cards":{"4":{"keep":true, "signed":true}, "E":{"rows":2, "columns":16}},
  "channels":{"5.1":{"active":"high", "as":"light"}, "3.0":{"device_class":"door"},
              "F.3":{"unit":"V", "max":5, "decimals":2, "hysteresis":0.02}}})";

inline constexpr std::string_view kVirtualBus = R"({
  "device":"/dev/pts/3", "cable":true, "frames":1200, "replies":1198, "lost":2, "shaped":0,
  "faults":["late 40ms"],
  "cards":[{"address":"3", "kind":"digital-input", "plugged":true, "values":[64, 0]},
           {"address":"5", "kind":"digital-output", "plugged":false, "values":null}]})";

inline constexpr std::string_view kPage = R"({
  "order":["5", "E"], "hidden":["9"], "groups":[{"name":"Hall", "cards":["5", "3"]}]})";

inline constexpr std::string_view kBackup = R"({
  "version":1,
  "names":{"bus":"bench", "cards":{"5":"Relays"}, "channels":{"5.0":"Lamp"}, "infrared":{}},
  "setup":{"cards":{}, "channels":{"F.3":{"unit":"V", "max":5}}},
  "page":{"order":["5", "E"], "hidden":[], "groups":[]}})";

inline constexpr std::string_view kWho = R"({"account":"operator", "role":"use"})";
inline constexpr std::string_view kNobody = R"({"account":null, "role":null})";
inline constexpr std::string_view kTicket = R"({"ticket":"7Zk0u1d3XJm2"})";
inline constexpr std::string_view kAccounts =
    R"({"accounts":[{"account":"operator", "role":"use"}]})";
inline constexpr std::string_view kTokens = R"({"tokens":[{"name":"script", "role":"view"}]})";
inline constexpr std::string_view kToken =
    R"({"name":"script", "role":"view", "token":"Xw2cQ8rZt5"})";

}  // namespace hub::api::examples
