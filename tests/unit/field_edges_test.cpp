// Each number that a manager sets: where it stands in the frame, its lowest and highest value, and the code of the
// others.

#include <algorithm>

#include "frames.h"
#include "host/chassis.h"
#include "module_fixture.h"
#include "voice/service/ngndb.h"

namespace {

using host::Fault;

struct Edge {
  u32 at, width;  // in the body
  i64 lowest, highest;
  int code;
  int codeOfLowest = 0, codeOfHighest = 0;  // where another number does not go with it
  const char* relation = nullptr;           // instead: bytes that are refused for what they are together
};

// Bodies, and their edges in the order in which they are checked.
struct Kind {
  u16 message;
  Bytes head;  // ahead of the body
  Bytes body;
  std::vector<Edge> edges;
};

Bytes single(const Bytes& key) { return join({zeros(32), number(4, 1), key}); }
Bytes profile() { return join({zeros(32), number(2, 1), number(2, 5), name("five")}); }
Bytes address() { return hex("00000001 00000004 00000000 00000000"); }
Bytes ranges(const char* pairs) { return join({hex("0001"), hex(pairs), zeros(4)}); }

// clang-format off
const Kind kinds[] = {
    // DSP and SIP call profiles, behind id and name; coders, switches, gains in dB, jitter buffers and intervals in ms.
    {3075, join({single(hex("0001")), name("one")}), join({hex("0001 00 01 0000 0000 0000 0028 0064 0014 3840"), zeros(60)}),
     {{0, 2, 0, 3, 65409}, {2, 1, 0, 1, 65408}, {3, 1, 0, 1, 65407}, {4, 2, -14, 6, 65406}, {6, 2, -14, 6, 65405},
      {8, 2, 0, 3, 65404}, {10, 2, 1, 254, 65403}, {12, 2, 1, 254, 65402}, {14, 2, 10, 10, 65420}, {14, 2, 60, 60, 65420},
      {16, 2, 2400, 2400, 65401}, {16, 2, 14400, 14400, 65401}}},
    {3091, join({single(hex("0001")), name("one")}), join({hex("0001 00 00 00 00"), zeros(32), hex("00 01"), zeros(62)}),
     {{0, 2, 0, 3, 65409}, {2, 1, 0, 1, 65408}, {3, 1, 0, 1, 65407}, {4, 1, 0, 1, 65406}, {5, 1, 0, 1, 65405},
      {38, 1, 0, 1, 65403}, {39, 1, 0, 1, 65402}}},
    // MGC: ports; heartbeat's switch, interval, timeouts and format
    {3073, single(zeros(50)), join({hex("61"), zeros(63), number(4, 1), hex("62"), zeros(63), number(4, 2),
                                    hex("01 00000001 00000001 00"), zeros(255)}),
     {{64, 4, 0, 65535, 65414}, {132, 4, 0, 65535, 65413}, {136, 1, 0, 2, 65411}, {137, 4, 1, 86400, 65410},
      {141, 4, 1, 120, 65409}, {145, 1, 0, 1, 65408}}},
    // RTP names: fixed part, begin, end, step; of 6000 names too many
    {3074, single(zeros(22)), join({hex("61"), zeros(11), hex("0bb8 2327 0001 01"), zeros(64)}),
     {{0, 0, 0, 0, 65416, 0, 0, "00"}, {12, 2, 0, 65534, 65415, 65411, 65413}, {14, 2, 0, 65534, 65414, 65413, 65411},
      {12, 0, 0, 0, 65413, 0, 0, "0007 0007"}, {16, 2, 1, 65534, 65412}, {12, 0, 0, 0, 65411, 0, 0, "0bb8 2328 0001"},
      {18, 1, 0, 1, 65410}}},
    // addresses with types, masks and gateways; PPPoE; DHCP
    {3076, single(zeros(22)), join({zeros(2), address(), address(), address(), address(), address(), address(), zeros(2181)}),
     {{0, 2, 0, 4, 65416}, {2, 4, 1, 4, 65415}, {10, 0, 0, 0, 65414, 0, 0, "000000e0"}, {14, 4, 0, 32, 65413},
      {18, 4, 1, 4, 65412}, {26, 0, 0, 0, 65411, 0, 0, "000000e0"},
      {10, 0, 0, 0, 65392, 0, 0, "0200000a 00000018 00000001 00000004 0101000a"}, {34, 4, 1, 4, 65409},
      {42, 0, 0, 0, 65408, 0, 0, "000000e0"}, {46, 4, 0, 32, 65413}, {50, 4, 1, 4, 65406},
      {58, 0, 0, 0, 65405, 0, 0, "000000e0"}, {42, 0, 0, 0, 65391, 0, 0, "0200000a 00000018 00000001 00000004 0101000a"},
      {66, 4, 1, 4, 65403}, {74, 0, 0, 0, 65402, 0, 0, "000000e0"}, {82, 4, 1, 4, 65400},
      {90, 0, 0, 0, 65399, 0, 0, "000000e0"}}},
    {3076, single(zeros(22)), join({hex("0001"), address(), address(), address(), address(), address(), address(),
                                    hex("01 75"), zeros(63), hex("0001"), zeros(2114)}),
     {{98, 1, 0, 1, 65397}, {99, 0, 0, 0, 65396, 0, 0, "00"}, {163, 2, 0, 2, 65395}}},
    {3076, single(zeros(22)), join({hex("0004"), address(), address(), address(), address(), address(), address(),
                                    zeros(1091), hex("01 01"), zeros(1088)}),
     {{1189, 1, 0, 1, 65394}, {1190, 1, 0, 1, 65393}}},
    // VLANs of signalling and voice streams: the second one's type, TPIDs, ids and priorities
    {3077, single(zeros(22)), join({hex("0002 0000 0007 8100 0001 0001 8100 0001 0001"), zeros(32),
                                    hex("0001 0007 8100 0001 0001 8100 0001 0001"), zeros(32)}),
     {{50, 0, 0, 0, 65416, 0, 0, "0002"}, {54, 2, 1, 65535, 65414}, {56, 2, 1, 4095, 65413}, {56, 2, 65535, 65535, 65413},
      {58, 2, 0, 7, 65412}, {60, 2, 1, 65535, 65411}, {62, 2, 1, 4095, 65410}, {62, 2, 65535, 65535, 65410},
      {64, 0, 0, 0, 65409, 0, 0, "0008"}}},
    // the transport, local port, encoding
    {3078, single(zeros(20)), zeros(584),
     {{70, 2, 0, 1, 65413}, {64, 2, 0, 65534, 65415}, {68, 2, 0, 1, 65414}}},
    // fax: mode, event, ANS, type, VBD, coder, intervals, SDP media and control
    {3079, single(zeros(22)), join({hex("0000 01 00 0000 00 00ff 0014 0014 00 0003"), zeros(507)}),
     {{0, 2, 0, 1, 65416}, {2, 1, 0, 1, 65415}, {3, 1, 0, 1, 65414}, {4, 2, 0, 2, 65413}, {6, 1, 0, 1, 65412},
      {7, 2, 0, 1, 65411}, {7, 2, 255, 255, 65411}, {9, 2, 10, 10, 65419}, {9, 2, 60, 60, 65419}, {11, 2, 10, 10, 65418},
      {11, 2, 60, 60, 65418}, {13, 1, 0, 1, 65410}, {14, 2, 1, 3, 65409}}},
    // voice timers in s, notification
    {3080, single(zeros(22)), join({hex("0000 00000001 00000001 00000001 00"), zeros(512)}),
     {{0, 2, 0, 254, 65416}, {2, 4, 1, 3600, 65415}, {6, 4, 1, 3600, 65414}, {10, 4, 1, 3600, 65413}, {14, 1, 0, 1, 65412}}},
    {3082, single(zeros(22)), join({hex("0000 0000 0061 0060"), zeros(32)}),
     {{0, 2, 0, 1, 65416}, {2, 2, 0, 1, 65415}, {4, 2, 96, 127, 65414}, {4, 2, 0, 0, 65414}, {6, 2, 96, 127, 65413},
      {6, 2, 0, 0, 65413}}},
    // signal tones in s: busy, dial, ROH, call waiting, ring, ring back, no answer, interval of dialing
    {3085, single(zeros(22)), join({hex("00000001 00000001 00000001 00000001 00000001 00000001 00000001 00000001"), zeros(32)}),
     {{0, 4, 1, 3600, 65416}, {4, 4, 1, 3600, 65415}, {8, 4, 1, 3600, 65414}, {12, 4, 1, 3600, 65413}, {16, 4, 1, 3600, 65412},
      {20, 4, 1, 3600, 65411}, {24, 4, 1, 3600, 65410}, {28, 4, 1, 3600, 65409}}},
    {3086, single(zeros(22)), join({hex("0000 0001"), zeros(128)}), {{0, 2, 0, 1, 65416}, {2, 2, 0, 1, 65415}}},
    {3087, single(zeros(22)), join({hex("0001"), zeros(32)}), {{0, 2, 1, 2, 65416}}},
    // SIP servers' ports, register interval, heartbeat
    {3088, single(zeros(50)), join({hex("61"), zeros(63), number(4, 5060), hex("62"), zeros(63), number(4, 5060),
                                    hex("63"), zeros(63), number(4, 5060), hex("64"), zeros(63), number(4, 5060),
                                    zeros(68), number(4, 60), hex("01 0001 0001 01"), zeros(256)}),
     {{64, 4, 1025, 65535, 65414}, {132, 4, 1025, 65535, 65413}, {200, 4, 1025, 65535, 65412}, {268, 4, 1025, 65535, 65411},
      {340, 4, 60, 3600, 65406}, {344, 1, 0, 2, 65405}, {345, 2, 1, 43200, 65404}, {347, 2, 1, 120, 65403},
      {349, 1, 0, 1, 65402}}},
    {3090, single(zeros(22)), join({zeros(68), zeros(256)}),
     {{0, 2, 0, 4, 65416}, {0, 0, 0, 0, 65415, 0, 0, "0001 00"}, {0, 0, 0, 0, 65414, 0, 0, "0001 612062"},
      {66, 1, 0, 1, 65413}, {67, 1, 0, 1, 65412}}},
    // POTS: pulse, interval and flash in ms, billing, impedance, hook times, gains in tenths of dB
    {2841, single(zeros(22)), join({hex("001e 09c4 005a 0000 00000014 0000 000a 09c4 00000000 00000000"), zeros(512)}),
     {{0, 2, 30, 2500, 65385, 0, 65375}, {2, 2, 50, 2500, 65384}, {0, 0, 0, 0, 65375, 0, 0, "002d 0032"},
      {4, 2, 90, 2500, 65383, 0, 65383}, {6, 2, 0, 2, 65382}, {8, 4, 4, 30, 65381}, {12, 2, 0, 2, 65380}, {14, 2, 10, 400, 65379},
      {16, 0, 0, 0, 65378, 0, 0, "09c5"}, {18, 4, 0, 100, 65377}, {22, 4, -100, 0, 65376}}},
    // alarm thresholds of a quarter of an hour in s
    {34668, profile(), zeros(64),
     {{0, 4, 0, 900, -101}, {4, 4, 0, 900, -102}, {8, 4, 0, 900, -103}, {12, 4, 0, 900, -104}, {16, 4, 0, 900, -105},
      {20, 4, 0, 900, -106}, {24, 4, 0, 900, -107}, {28, 4, 0, 900, -108}, {32, 4, 0, 900, -109}, {36, 4, 0, 900, -110},
      {40, 4, 0, 900, -111}, {44, 4, 0, 900, -112}}},
    // ADSL line; margins are a head, digits and tenths
    {34661, profile(),
     join({hex("0000 0002 0002 0003"), zeros(8), hex("0001 0000003c 0001 0000003c 0010 0010 0001 0001 00 00 0000 012c 001e 0003"),
           hex("00000020 001f 001f 0000 0000 0001"), zeros(8), zeros(8), zeros(64)}),
     {{16, 1, 0, 0, -79}, {22, 1, 0, 0, -80}, {58, 0, 0, 0, -92, 0, 0, "0011"}, {0, 2, 0, 4, -73}, {2, 2, 1, 3, -74},
      {4, 2, 1, 3, -75}, {6, 2, 1, 5, -76}, {17, 1, 1, 1, -79}, {18, 4, 0, 310, -79}, {23, 1, 1, 1, -80},
      {24, 4, 0, 310, -80}, {28, 2, 0, 63, -81}, {30, 2, 0, 63, -82}, {32, 2, 1, 18, -83},
      {34, 2, 1, 18, -84}, {36, 1, 0, 1, -85}, {37, 1, 0, 1, -86}, {38, 2, 0, 3, -87}, {40, 2, 0, 65534, -88},
      {42, 2, 0, 65534, -89}, {44, 2, 0, 15, -90}, {46, 4, 0, 1024, -91}, {50, 2, 0, 31, -95}, {52, 2, 0, 31, -96},
      {54, 2, 0, 31, -97}, {56, 2, 0, 31, -98}, {50, 0, 0, 0, -101, 0, 0, "0005 001f 0006 0000"},
      {50, 0, 0, 0, -101, 0, 0, "001f 0005 0000 0006"}, {60, 2, 0, 511, -93},
      {62, 2, 0, 511, -94}, {68, 4, 0, 100000, -99}, {72, 4, 0, 100000, -100}}},
    {34664, profile(), join({zeros(8), hex("0001 0000 00ff 00000020"), zeros(4)}),
     {{8, 0, 0, 0, -119, 0, 0, "0009"}, {10, 2, 0, 7, -96}, {12, 0, 0, 0, -97, 0, 0, "0100"},
      {12, 0, 0, 0, -97, 0, 0, "fffe"}, {14, 4, 32, 255, -98}}},
    // VDSL line: port mode, profiles, PSD shape, power in tenths of dBm, RFI bands, blackouts
    {34801, profile(),
     join({hex("0002 00ff 0015 0001 000000cd 0001 00000091"), zeros(4), ranges("0000 0fff"), zeros(4), ranges("0000 0fff"), zeros(8)}),
     {{22, 0, 0, 0, -107, 0, 0, "0011"}, {36, 0, 0, 0, -110, 0, 0, "0009"}, {0, 2, 1, 3, -102}, {2, 2, 1, 2, -103},
      {2, 2, 255, 255, -103}, {4, 2, 0, 42, -104}, {8, 4, 0, 255, -105}, {14, 4, 0, 202, -106}, {24, 2, 0, 4095, -108},
      {26, 2, 0, 4095, -109}, {38, 2, 0, 4095, -111}, {40, 2, 0, 4095, -112}}},
    // VDSL service: modes, noise margins in tenths of dB, rates in kbit/s, delays in ms, symbols
    {34803, profile(),
     join({hex("0002 0002 00010000003c 00 000100000136 000100000000 00010000003c 00 000100000136 000100000000"), zeros(4),
           hex("00000040"), zeros(4), hex("00000040 0010 0010 0001 0001"), zeros(8)}),
     {{2, 2, 1, 3, -103, -121, -121}, {0, 2, 1, 3, -102, -121, -121}, {0, 0, 0, 0, -121, 0, 0, "0003"}, {6, 4, 0, 310, -104},
      {10, 1, 0, 1, -105}, {13, 4, 0, 310, -106}, {19, 4, 0, 310, -107},
      {13, 0, 0, 0, -120, 0, 0, "00000000 0001 00000001"}, {25, 4, 0, 310, -108}, {29, 1, 0, 1, -109}, {32, 4, 0, 310, -110},
      {38, 4, 0, 310, -111}, {32, 0, 0, 0, -120, 0, 0, "00000135 0001 00000136"}, {46, 4, 0, 200000, -113},
      {54, 4, 0, 200000, -115}, {58, 2, 0, 63, -116}, {60, 2, 0, 63, -117}, {62, 2, 0, 18, -118}, {64, 2, 0, 18, -119}}},
    // power back-off: lengths in tenths of dB, A and B of each band in hundredths, scalars in 10^-8, limits in tones
    {34805, profile(),
     join({hex("0000 000100000000 000200000fa0 000200000000 000200001612 0002000003fc 000200001612 000200000267 000200001612"),
           hex("000200000267 000100000000 00080029b927 000805e3ff5d 0008001dcd65 0001fffffc7c 0000 1b2c"), zeros(32)}),
     {{0, 2, 0, 2, -102}, {4, 4, 0, 2555, -103}, {10, 4, 4000, 8095, -104}, {16, 4, 0, 4095, -105}, {22, 4, 4000, 8095, -106},
      {28, 4, 0, 4095, -107}, {34, 4, 4000, 8095, -108}, {40, 4, 0, 4095, -109}, {46, 4, 4000, 8095, -110},
      {52, 4, 0, 4095, -111}, {58, 4, 0, 2555, -112}, {64, 4, -100000000, 150000000, -113},
      {70, 4, -100000000, 150000000, -114}, {76, 4, -100000000, 150000000, -115}, {82, 4, -1275, 0, -116},
      {86, 2, 0, 2048, -117}, {88, 2, 32, 6956, -118}, {86, 0, 0, 0, -119, 0, 0, "0201 0200"}}},
    // PSD and virtual noise: points up and down, each with a tone and a level in tenths of dB and in dB
    {34807, profile(),
     join({zeros(4), hex("0001 0007 0001fffffb50 00000000"), zeros(4), hex("0001 0021 0001fffffb50 00000000"), zeros(8)}),
     {{4, 0, 0, 0, -102, 0, 0, "0011"}, {22, 0, 0, 0, -105, 0, 0, "0029"}, {6, 2, 7, 32, -103}, {6, 2, 880, 1196, -103},
      {6, 2, 1981, 2773, -103}, {10, 4, -1200, 0, -104}, {24, 2, 33, 859, -106}, {24, 2, 1216, 1961, -106},
      {24, 2, 2793, 4081, -106}, {28, 4, -1200, 0, -107}}},
    {34809, profile(),
     join({zeros(4), hex("0002 0007 ff74 00000000 0ad5 0028 00000000"), zeros(4), hex("0002 0021 ff74 00000000 0ff1 0028 00000000"),
           zeros(8)}),
     {{4, 0, 0, 0, -102, 0, 0, "0001"}, {4, 0, 0, 0, -102, 0, 0, "0011"}, {26, 0, 0, 0, -105, 0, 0, "0001"},
      {26, 0, 0, 0, -105, 0, 0, "0021"}, {6, 2, 7, 32, -103}, {8, 2, -140, 40, -104}, {14, 2, 880, 1196, -103},
      {14, 2, 1981, 2773, -103}, {28, 2, 33, 859, -106}, {30, 2, -140, 40, -107}, {36, 2, 1216, 1961, -106},
      {36, 2, 2793, 4081, -106}}},
    // seamless rate adaption: margins in tenths of dB, times in s
    {34820, profile(),
     join({hex("0001 0000 0000 000100000000 0000 000100000136 3fff 000100000000 0000 000100000136 3fff"), zeros(64)}),
     {{0, 2, 0, 1, -101}, {2, 2, 0, 2, -102}, {4, 2, 0, 1, -103}, {8, 4, 0, 310, -104}, {12, 2, 0, 16383, -105},
      {16, 4, 0, 310, -106}, {20, 2, 0, 16383, -107}, {8, 0, 0, 0, -112, 0, 0, "00000002 0000 0001 00000001"},
      {12, 0, 0, 0, -112, 0, 0, "0002 0001 00000136 0001"}, {24, 4, 0, 310, -108}, {28, 2, 0, 16383, -109},
      {32, 4, 0, 310, -110}, {36, 2, 0, 16383, -111}, {24, 0, 0, 0, -112, 0, 0, "00000002 0000 0001 00000001"},
      {28, 0, 0, 0, -112, 0, 0, "0002 0001 00000136 0001"}}},
    // retransmission: modes, delays in ms, protection in tenths of a symbol, REIN, rates in kbit/s
    {34822, profile(),
     join({hex("0000 0003 0000 003f 000100000000 0001000004f6 0001 0000 000100000000 0001 000100000046 00000040 0007d000"),
           hex("0007d000 00000040 0007d000 0007d000 0000 001f 000100000000 0001000000a0 00000010 000000ec"), zeros(64)}),
     {{0, 2, 0, 3, -101}, {2, 2, 0, 3, -102}, {4, 2, 0, 63, -103}, {6, 2, 0, 63, -104}, {10, 4, 0, 1270, -105},
      {16, 4, 0, 1270, -106}, {20, 2, 0, 1, -107}, {22, 2, 0, 1, -108}, {26, 4, 0, 70, -109}, {30, 2, 0, 1, -110},
      {34, 4, 0, 70, -111}, {38, 4, 64, 512000, -112}, {42, 4, 64, 512000, -113}, {46, 4, 64, 512000, -114},
      {38, 0, 0, 0, -124, 0, 0, "00000042 00000041"}, {50, 4, 64, 512000, -115}, {54, 4, 64, 512000, -116},
      {58, 4, 64, 512000, -117}, {50, 0, 0, 0, -124, 0, 0, "00000042 00000041"}, {62, 2, 0, 31, -118},
      {64, 2, 0, 31, -119}, {68, 4, 0, 160, -120}, {74, 4, 0, 160, -121}, {78, 4, 4, 236, -122}, {82, 4, 4, 236, -123}}},
    // VLAN services of a port, one row with an outer tag and one service with one around it
    {2846, join({single(hex("0002 0001")), zeros(16), hex("0001 0000")}),
     join({hex("01 8100 0001 0000 00"), zeros(8), hex("0001 00 0001 0000 8100 0001 0000 000000000000 01 0000 8100 0001 0000"), zeros(8)}),
     {{3, 2, 1, 4085, -109}, {5, 2, 0, 7, -110}, {18, 1, 0, 1, -103}, {25, 2, 1, 4085, -112}, {27, 2, 0, 7, -113},
      {21, 2, 0, 0, -105}, {40, 2, 1, 4085, -107}, {42, 2, 0, 7, -108}, {36, 2, 0, 0, -106}}},
    {2846, join({single(hex("0002 0001")), zeros(16), hex("0001 0000")}),
     join({zeros(16), hex("0001 00 0002 0000 8100 0001 0000 8100 0001 0000 00"), zeros(16)}), {{31, 2, 1, 4085, -114}}},
};
// clang-format on

void put(Bytes& body, u32 at, const Bytes& bytes) {
  std::ranges::copy(bytes, body.begin() + static_cast<std::ptrdiff_t>(at));
}
Bytes with(Bytes body, const Edge& edge, i64 value) {
  put(body, edge.at, number(edge.width, static_cast<u32>(value)));
  return body;
}
// Bytes that its check refuses.
void spoil(Bytes& body, const Edge& edge) {
  put(body, edge.at,
      edge.relation != nullptr ? hex(edge.relation) : number(edge.width, static_cast<u32>(edge.highest + 1)));
}

class FieldEdges : public ModuleTest {
 protected:
  FieldEdges() {
    host::authorise(2, *host::findCardType("vdsl16"));
    typed(CONFIG_NODE, "set dsp profile 1 name one");
    typed(CONFIG_NODE, "set sip user call profile 1 name one");
    db_set_ngn_protocol_type(kSip);
  }
  ~FieldEdges() override { host::clearChassis(); }
  static Bytes replyTo(const Kind& kind, const Bytes& body) {
    Bytes request = join({kind.head, body});
    return *host::agentSet(kind.message, true, &request).reply;
  }
  static int codeFor(const Kind& kind, const Bytes& body) { return static_cast<u16>(codeOf(replyTo(kind, body))); }
};

TEST_F(FieldEdges, EachHasItsCode) {
  for (const Kind& kind : kinds) {
    EXPECT_EQ(codeFor(kind, kind.body), 0) << kind.message;
    for (const Edge& edge : kind.edges) {
      if (edge.relation != nullptr) continue;
      const auto expect = [&](i64 value, int code) {
        EXPECT_EQ(codeFor(kind, with(kind.body, edge, value)), static_cast<u16>(code))
            << kind.message << " at " << edge.at << ": " << value;
      };
      expect(edge.lowest, edge.codeOfLowest);
      expect(edge.highest, edge.codeOfHighest);
      for (const i64 outside : {edge.lowest - 1, edge.highest + 1}) {
        expect(outside, edge.code);
        // The answer has the value, of a profile's field the profile; of a port more.
        if (kind.message == 2846) continue;
        const Bytes reply = replyTo(kind, with(kind.body, edge, outside));
        const Bytes told =
            kind.message > 30000 ? join({number(2, 5), name("five")}) : number(edge.width, static_cast<u32>(outside));
        EXPECT_EQ(Bytes(reply.begin() + 16, reply.end()), told) << kind.message << " at " << edge.at;
      }
    }
  }
}

// A store that fails under a frame is told, and has left what was there. Memory may fail behind it.
TEST_F(FieldEdges, AreStoredOrRefused) {
  for (const Kind& kind : kinds) {
    if (kind.message == 3076) continue;  // changes a row of zeros when its own can't be read
    const Edge& edge = *std::ranges::find_if(
        kind.edges, [](const Edge& e) { return e.highest != e.lowest && e.codeOfHighest == 0 && e.codeOfLowest == 0; });
    Bytes other = with(kind.body, edge, edge.lowest);
    if (other == kind.body) other = with(kind.body, edge, edge.highest);
    ASSERT_EQ(codeFor(kind, kind.body), 0) << kind.message;
    const std::string behind = storedRows();
    ASSERT_EQ(codeFor(kind, other), 0) << kind.message;
    const std::string before = storedRows();
    ASSERT_NE(before, behind) << kind.message;
    for (const Fault fault : {Fault::connect, Fault::start, Fault::find, Fault::create, Fault::commit, Fault::alloc}) {
      bool failed = true;
      for (u32 n = 1; failed; ++n) {
        host::failNth(fault, n);
        const int code = codeFor(kind, kind.body);
        failed = !host::faultPending(fault);
        host::clearFaults();
        const std::string now = storedRows();
        EXPECT_TRUE(now == (code == 0 ? behind : before) || (fault == Fault::alloc && now == behind))
            << kind.message << ": " << n << " of " << int(fault) << ": " << code;
        ASSERT_EQ(codeFor(kind, other), 0) << kind.message;
      }
    }
  }
}

// The first bad value is told, whatever is behind it.
TEST_F(FieldEdges, AreCheckedInTheirOrder) {
  for (const Kind& kind : kinds) {
    Bytes body = kind.body;
    for (std::size_t i = kind.edges.size(); i-- > 0;) {
      spoil(body, kind.edges[i]);
      EXPECT_EQ(codeFor(kind, body), static_cast<u16>(kind.edges[i].code)) << kind.message << " at " << i;
    }
  }
}

}  // namespace
