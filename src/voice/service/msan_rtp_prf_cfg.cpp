#include "voice/service/msan_rtp_prf_cfg.h"

#include <cstring>

#include "common/commands.h"
#include "common/words.h"
#include "platform/tables.h"
#include "voice/common/voice_item.h"

// clang-format off
static constexpr Field fields[] = {
    field<&RtpResource::nameFixed, RtpProfile_nameFixed_get, RtpProfile_nameFixed_put>({.offset = 0, .initialText = "RTP/"}),
    field<&RtpResource::nameBegin, RtpProfile_nameBegin_get, RtpProfile_nameBegin_put>(
        {.offset = 12, .initial = 4000, .allowed = {{0, 65534}}, .code = 65415, .complaint = "invalid begin of the name: %d"}),
    field<&RtpResource::nameEnd, RtpProfile_nameEnd_get, RtpProfile_nameEnd_put>(
        {.offset = 14, .initial = 9000, .allowed = {{0, 65534}}, .code = 65414, .complaint = "invalid end of the name: %d"}),
    field<&RtpResource::nameStep, RtpProfile_nameStep_get, RtpProfile_nameStep_put>(
        {.offset = 16, .initial = 1, .allowed = {{1, 65534}}, .code = 65412, .complaint = "invalid step of the name: %d"}),
    field<&RtpResource::nameFilled, RtpProfile_nameFilled_get, RtpProfile_nameFilled_put>(
        {.offset = 18, .initial = 1, .allowed = {{0, 1}}, .code = 65410, .complaint = "invalid name filled option: %d"}),
};
// clang-format on
static constexpr Record shape(83, fields);
static constexpr Table<RtpProfile> table{"RtpProfile", "treeIdx", RtpProfile_treeIdx_find, RtpProfile_new,
                                         RtpProfile_recordid_put};
static constexpr Word filledWords[] = {{"yes", 1}, {"no", 0}};
static constexpr u32 kMostNames = 6000;

// Up to which field the ranges are looked at ahead of the tests over several fields.
static constexpr std::size_t kEnds = 3, kSteps = 4;

static int ncheck_rtp_profile(const RtpResource* cfg, SnmpErrInfo* err) {
  if (cfg->nameFixed[0] == '\0') {
    vSetErrorInfo(65416, err);
    trace("the fixed part of the name is NULL");
    return -1;
  }
  constexpr Fields all(fields);
  if (checkRecord(all.first(kEnds), cfg, err) != 0) return -1;
  if (cfg->nameEnd <= cfg->nameBegin) {
    vSetErrorInfo(65413, &cfg->nameEnd, sizeof cfg->nameEnd, err);
    trace("the end of the name is not above its begin: %d", cfg->nameEnd);
    return -1;
  }
  if (checkRecord(all.subspan(kEnds, kSteps - kEnds), cfg, err) != 0) return -1;
  const u16 span = static_cast<u16>(cfg->nameEnd - cfg->nameBegin);
  if (span >= kMostNames * cfg->nameStep) {
    vSetErrorInfo(65411, &span, sizeof span, err);
    trace("too many names: %d", span);
    return -1;
  }
  return checkRecord(all.subspan(kSteps), cfg, err);
}

static int cli_set_rtp_profile_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  RtpResource cfg;
  if (argc != 5) return refuse(vty, "invalid parameter quantity");
  const std::size_t length = std::strlen(argv[0]);
  if (length == 0) return refuse(vty, "the fixed part of the profile name is NULL");
  if (length > sizeof cfg.nameFixed) {
    vty_out(vty, "\r\n the fixed part of the profile name is more than %d bytes. \r\n", 12);
    return -1;
  }
  std::memcpy(cfg.nameFixed, argv[0], length);
  cfg.nameBegin = static_cast<u16>(bep_atoiEx(argv[1]));
  cfg.nameEnd = static_cast<u16>(bep_atoiEx(argv[2]));
  cfg.nameStep = static_cast<u16>(bep_atoiEx(argv[3]));
  const auto filled = valueOf(filledWords, argv[4]);
  if (!filled) return refuse(vty, "invalid name filled option");
  cfg.nameFilled = static_cast<u8>(*filled);
  return configure(vty, rtpResource, &cfg, "set RTP resource profile");
}

static void show(Vty* vty, const RtpResource* cfg) {
  vty_out(vty, "\r\n RTP Resource Profile Configuration");
  vty_out(vty, "\r\n ------------------------------------");
  vty_out(vty, "\r\n %-19s%.12s", "Fixed of the Name: ", cfg->nameFixed);
  vty_out(vty, "\r\n %-19s%d", "Begin of the Name: ", cfg->nameBegin);
  vty_out(vty, "\r\n %-19s%d", "End of the Name: ", cfg->nameEnd);
  vty_out(vty, "\r\n %-19s%d", "Step of the Name: ", cfg->nameStep);
  vty_out(vty, "\r\n %-19s%s\r\n", "Name Filled: ", cfg->nameFilled == 1 ? "Yes" : "No");
}

static void nshowrun_rtp_profile(Vty* vty, const RtpResource* cfg) {
  vty_out(vty, "set rtp resource profile %.12s begin %d end %d step %d filled %s\r\n", cfg->nameFixed, cfg->nameBegin,
          cfg->nameEnd, cfg->nameStep, textOf(filledWords, cfg->nameFilled, "no"));
}

// clang-format off
static constexpr Command commands[] = {
    command(CONFIG_NODE, "show rtp resource profile", showOf<rtpResource>, "names of the RTP resources"),
    command(CONFIG_NODE, "set rtp resource profile <nameFixed> begin <nameBegin> end <nameEnd> step <nameStep> filled [yes|no]",
            cli_set_rtp_profile_config_func, "names of the RTP resources"),
    command(CONFIG_NODE, "[distribute|erase] rtp resource profile", distributeEraseOf<rtpResource>,
            "names of the RTP resources"),
};
// clang-format on

static constexpr StepNames names =
    serviceItem("db_set_rtpcfg_prf", "db_get_rtpcfg_prf", "rtp_prf_cfg_regsnmpcmd_handle");

constexpr VoiceItem rtpResource = {
    .id = 3074,
    .stem = "rtp_profile",
    .names = &names,
    .words = "RTP resource profile",
    .notShownWords = "RTP profile",
    .kept = kept<RtpResource>(shape, table),
    .check = onRecord<ncheck_rtp_profile>,
    .show = onRecord<show>,
    .showrun = onRecord<nshowrun_rtp_profile>,
    .commands = commands,
    .message = setAndGet<rtpResource>(109, "Set RTP configuration profile"),
};
