#include <algorithm>
#include <cstring>
#include <string_view>

#include "common/commands.h"
#include "common/memory.h"
#include "platform/tables.h"
#include "voice/common/voice_item.h"
#include "voice/common/voice_packets.h"
#include "voice/common/voice_public.h"
#include "voice/service/msan_sip_cfg.h"

static constexpr u32 kMap = sizeof(SipDigitMap::map);
static constexpr u32 kReserved = 256;  // bytes behind a map in a message
static constexpr u32 kPiece = 480;     // of a map in a line of the running configuration
static constexpr u32 kShown = 32;      // in a line of show

static std::string_view textOf(const SipDigitMap& cfg) { return {cfg.map, strnlen(cfg.map, kMap)}; }

// clang-format off
static constexpr Field fields[] = {
    field<&SipDigitMap::map, SIPDigitMapCfg_digitMap_get, SIPDigitMapCfg_digitMap_put>(
        {.offset = 0, .initialText = "[0-9ABCD].|[EF][0-9ABCDEF].", .cutAtEnd = true}),
};
// clang-format on
static constexpr Record shape(kMap + kReserved, fields);

// The table has the length beside the map; in a record the map tells it.
static int putLength(void* row, const void* map) {
  const auto length = static_cast<u32>(strnlen(static_cast<const char*>(map), kMap));
  return SIPDigitMapCfg_mapLength_put(static_cast<SIPDigitMapCfg*>(row), length);
}
static constexpr Field stored[] = {
    {{.offset = 0}, 0, false, fields[0].in, [](void*, void*) { return 0; }, putLength},
    fields[0],
};
static constexpr Table<SIPDigitMapCfg> table{"SIPDigitMapCfg", "treeIdx", SIPDigitMapCfg_treeIdx_find,
                                             SIPDigitMapCfg_new, SIPDigitMapCfg_recordid_put};

static int ncheck_sipdigitmap(const SipDigitMap* cfg, SnmpErrInfo* err) {
  const std::string_view map = textOf(*cfg);
  if (map.empty()) {
    vSetErrorInfo(65406, err);
    trace("the SIP digital map is NULL");
    return -1;
  }
  const int valid = nIsValidString(map.data(), static_cast<u16>(map.size()), gCriteriaDigitMap);
  if (valid == 1) return 0;
  vSetErrorInfo(valid == -1 ? u32{kStepFailed} : 65405, err);
  trace("invalid SIP digital map");
  return -1;
}

// To the NGN side a map goes with its length, and no longer than it is.
static void nencode_sipdigitmap(const SipDigitMap* cfg, Writer& out) {
  const std::string_view map = textOf(*cfg);
  out.number(4, static_cast<u32>(map.size()));
  out.bytes({reinterpret_cast<const u8*>(map.data()), map.size()});
  out.zeros(kReserved);
}

static int tooLong(Vty* vty) {
  vty_out(vty, "\r\n the length of SIP digital map is more than %d bytes. \r\n", static_cast<int>(kMap));
  return -1;
}

// A map on its way, zeroed and from the pool: a command's thread has little stack. Null without memory.
static PoolBytes newMap() {
  u8* memory = nullptr;
  vMemAlloc(&memory, sizeof(SipDigitMap));
  return PoolBytes(memory);
}
static constexpr const char* kNoMap = "malloc for SIP digital map failed";

static int cli_set_sip_digital_map_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return refuse(vty, "invalid parameter quantity");
  const std::string_view map = argv[0];
  if (map.empty()) return refuse(vty, "the SIP digital map is NULL");
  if (map.size() > kMap) return tooLong(vty);
  const PoolBytes cfg = newMap();
  if (cfg == nullptr) return refuse(vty, kNoMap);
  map.copy(reinterpret_cast<SipDigitMap*>(cfg.get())->map, kMap);
  return configure(vty, sipDigitMap, cfg.get());
}

static int cli_add_sip_digital_map_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  SipDigitMap cfg;
  if (argc != 1) return refuse(vty, "invalid parameter quantity");
  const std::string_view more = argv[0];
  if (more.empty()) return refuse(vty, "the SIP digital map is NULL");
  if (loadItem(sipDigitMap, &cfg) != 0) return refuse(vty, "get current SIP digital map configuration failed");
  const std::size_t length = textOf(cfg).size();
  if (length == kMap) return refuse(vty, "current SIP digital map configuration is FULL");
  if (length + more.size() > kMap) return tooLong(vty);
  more.copy(cfg.map + length, kMap - length);
  return configure(vty, sipDigitMap, &cfg);
}

static void show(Vty* vty, const SipDigitMap& cfg) {
  const std::string_view map = textOf(cfg);
  vty_out(vty, "\r\n SIP Digital Map Configuration");
  vty_out(vty, "\r\n ----------------------------------");
  vty_out(vty, "\r\n Digital Map Length: %d", static_cast<int>(map.size()));
  for (std::size_t at = 0; at < map.size(); at += kShown)
    vty_out(vty, "\r\n %.*s", static_cast<int>(std::min<std::size_t>(kShown, map.size() - at)), map.data() + at);
  vty_out(vty, "\r\n");
}

static int cli_show_sip_digital_map_config_func(const CommandElement*, Vty* vty, int, char**) {
  const PoolBytes cfg = newMap();
  if (cfg == nullptr) return refuse(vty, kNoMap);
  const int result = loadItem(sipDigitMap, cfg.get());
  if (result == 0) show(vty, *reinterpret_cast<const SipDigitMap*>(cfg.get()));
  return finishShow(vty, sipDigitMap, result);
}

static void nshowrun_sipdigitmap(Vty* vty, const SipDigitMap* cfg) {
  const std::string_view map = textOf(*cfg);
  for (std::size_t at = 0; at < map.size(); at += kPiece)
    vty_out(vty, "\r\n%s sip digital map %.*s", at == 0 ? "set" : "add",
            static_cast<int>(std::min<std::size_t>(kPiece, map.size() - at)), map.data() + at);
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "show sip digital map", cli_show_sip_digital_map_config_func,
            "the map that ends a dial string"),
    command(CONFIG_NODE, "set sip digital map <digitalMap>", cli_set_sip_digital_map_config_func,
            "the map that ends a dial string, up to 492 bytes of it"),
    command(CONFIG_NODE, "add sip digital map <digitalMap>", cli_add_sip_digital_map_config_func,
            "more of the map, up to 492 bytes"),
    command(CONFIG_NODE, "[distribute|erase] sip digital map", distributeEraseOf<sipDigitMap>,
            "the map that ends a dial string"),
};

constexpr VoiceItem sipDigitMap = {
    .id = 3089,
    .stem = "sipdigitmap",
    .names = &sipDigitMapNames,
    .words = "SIP digital map",
    .kept = kept<SipDigitMap>(shape, table, stored),
    .forward = Forward::encoded,
    .check = onRecord<ncheck_sipdigitmap>,
    .encode = onRecord<nencode_sipdigitmap>,
    .encodedBytes = 4 + kMap + kReserved,
    .showrun = onRecord<nshowrun_sipdigitmap>,
    .commands = commands,
    .message = setAndGet<sipDigitMap>(2330, "Set SIP digital map"),
};
