// The messages over rate-limit profiles. A request is carried out profile by profile, and answered in a form of its
// own:
//
//   u32 1, or 65 if something was refused; u16 units; 60 bytes for each: ":", 0, u16 code, u16 message, 4 zeros, and 50
//   bytes of what it is about. All its numbers are little-endian, but those of the last part.

#include <algorithm>
#include <cstring>

#include "common/report.h"
#include "data/rate/port_rate_bind.h"
#include "data/rate/port_rate_profile.h"

static constexpr u32 kCount = 32;  // offset in a request, u16
static constexpr u32 kBody = 34;
static constexpr u32 kMostCount = 257;
static constexpr u32 kWireProfile = 76;
static constexpr u32 kWireId = 2;

class RateAnswer {
 public:
  RateAnswer(u16 id, u8* reply) : id_(id), reply_(reply) {}

  // More than 50 are not told.
  void refuse(int code, WireIn detail = {}) {
    if (units_ == kMostUnits) return;
    u8* unit = reply_ + kHead + kUnit * units_++;
    std::memset(unit, 0, kUnit);
    unit[0] = ':';
    little(unit + 2, 2, static_cast<u32>(code));
    little(unit + 4, 2, id_);
    std::ranges::copy(detail, unit + kDetail);
  }
  // Takes back what was told.
  void clear() { units_ = 0; }

  u32 end() {
    little(reply_, 4, units_ == 0 ? 1 : 65);
    little(reply_ + 4, 2, units_);
    return kHead + kUnit * units_;
  }

 private:
  static constexpr u32 kHead = 6, kUnit = 60, kDetail = 10, kMostUnits = 50;

  static void little(u8* at, u32 width, u32 value) {
    for (u32 i = 0; i < width; ++i) at[i] = static_cast<u8>(value >> 8 * i);
  }

  u16 id_;
  u8* reply_;
  u32 units_ = 0;
};

// The count of a request that is as long as it says. 0 or a code.
static int readCount(WireIn frame, u32 width, u32* count) {
  if (frame.size() < kBody) return kRateLength;
  *count = getNumber(frame.data() + kCount, 2);
  if (*count > kMostCount) return kRateCount;
  return frame.size() == kBody + *count * width ? 0 : kRateLength;
}

static PortRatePrf readProfile(Reader& in) {
  PortRatePrf profile;
  profile.id = static_cast<u16>(in.number(2));
  in.bytes(profile.name, kRateName);
  profile.usStatus = static_cast<u8>(in.number(1));
  profile.usCir = in.number(4);
  in.skip(sizeof profile.usReserved);
  profile.dsStatus = static_cast<u8>(in.number(1));
  profile.dsCir = in.number(4);
  in.skip(sizeof profile.dsReserved);
  return profile;
}

// A request to its end: `change` is given the reader and the answer for each of its parts, and gives 1 where something
// has changed, 0 where not, and -1 to end it.
template <class Change>
static int carryOut(u16 id, WireIn frame, u32 width, u8* reply, u32* replyLen, Change change) {
  RateAnswer answer(id, reply);
  u32 count = 0;
  bool changed = false;
  if (const int code = readCount(frame, width, &count)) {
    answer.refuse(code);
    count = 0;
  }
  Reader in(frame.subspan(std::min<std::size_t>(kBody, frame.size())));
  for (; count != 0; --count) {
    const int result = change(in, answer);
    if (result < 0) break;
    changed = changed || result == 1;
  }
  *replyLen = answer.end();
  if (!changed) return -1;
  reportChange(kNode, kRateProfileMessage, 1);
  return 0;
}

static SnmpSetHandler unpack_set_port_rate_profile;
int unpack_set_port_rate_profile(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  const auto set = [](Reader& in, RateAnswer& answer) {
    const PortRatePrf profile = readProfile(in);
    if (profile.id == 0) return 0;  // the default stays as it is
    const int code = gpon_set_port_rate_profile_base(profile, port_rate_prf_is_modify(profile.id, profile));
    if (code == 0) return 1;
    answer.refuse(code, {reinterpret_cast<const u8*>(profile.name), kRateName});
    return 0;
  };
  return carryOut(id, {data, static_cast<u32>(length)}, kWireProfile, reply, replyLen, set);
}

static SnmpSetHandler unpack_delete_port_rate_profile;
int unpack_delete_port_rate_profile(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  const auto remove = [](Reader& in, RateAnswer& answer) {
    const WireIn wire = in.rest().first(kWireId);
    const auto profile = static_cast<u16>(in.number(kWireId));
    if (profile == 0) {
      answer.clear();
      answer.refuse(kRateDefault);
      return -1;
    }
    const int code = deleteRateProfile(profile);
    if (code == 0) return 1;
    answer.refuse(code, wire);
    return 0;
  };
  return carryOut(id, {data, static_cast<u32>(length)}, kWireId, reply, replyLen, remove);
}

static SnmpGetHandler pack_get_port_rate_profile;
int pack_get_port_rate_profile(u16, u8*, u8*, i32, u8* reply, u32* replyLen, void*, void*) {
  constexpr u32 kAnswerCount = 36;
  Writer out(WireOut(reply, kMaxPacket));
  out.number(4, 1);
  out.zeros(kAnswerCount - 4);
  out.skip(2);
  PortRatePrf profile;
  u32 count = 0;
  u16 id = 0;
  get_rate_limit_profile_byid(0, &profile);
  do {
    writeRateProfile(profile, out);
    ++count;
    id = nextRateProfile(id, &profile);
  } while (id != 0);
  putNumber(reply + kAnswerCount, 2, count);
  *replyLen = out.length();
  return 0;
}

void register_port_rate_profile_set_snmp() {
  static constexpr SnmpMsgReg message{kRateProfileMessage,        {0, 0}, unpack_set_port_rate_profile,
                                      pack_get_port_rate_profile, 19052,  "port rate profile"};
  SnmpMsgRegister(&message);
}

void register_port_rate_profile_del_snmp() {
  static constexpr SnmpMsgReg message{kRateProfileDeletion,   {0, 0}, unpack_delete_port_rate_profile, nullptr, 19052,
                                      "port rate profile del"};
  SnmpMsgRegister(&message);
}
