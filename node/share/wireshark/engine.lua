-- Wireshark's dissector for captures of messages, which "trace file" and "msan-scenario --capture" write.
--
--   tshark -X lua_script:msan.lua -r FILE.pcapng          or in Wireshark's folder of plugins
--
-- Fields are msan.MESSAGE.FIELD, in a list or group msan.MESSAGE.LIST.FIELD, what an error tells msan.MESSAGE.error.FIELD;
-- they have the names and values that msan-frame --json prints. The number of one that is a word is in FIELD.number.

local proto = Proto("msan", "MSAN message")
local own = {
  version = ProtoField.uint8("msan.version", "version"),
  road = ProtoField.string("msan.road", "road"),
  slot = ProtoField.uint16("msan.slot", "slot"),
  id = ProtoField.uint16("msan.id", "id"),
  message = ProtoField.string("msan.message", "message"),
  length = ProtoField.uint32("msan.length", "length"),
  meaning = ProtoField.string("msan.meaning", "meaning"),
  fields = ProtoField.none("msan.fields", "fields"),
  -- what has no name of its own: it follows from the rest
  constant = ProtoField.bytes("msan.constant", "constant"),
  count = ProtoField.bytes("msan.count", "count"),
  reserved = ProtoField.bytes("msan.reserved", "reserved"),
  cut = ProtoField.bytes("msan.cut", "cut"),
  unknown = ProtoField.bytes("msan.unknown", "unknown"),
}
local malformed = ProtoExpert.new("msan.malformed", "not as described", expert.group.MALFORMED, expert.severity.ERROR)
proto.experts = { malformed }

local HEAD = 12
local MOST_DECIMALS = 9
local CAME = { set = true, get = true, ["gpon answer"] = true, ["gepon answer"] = true, ["ngn answer"] = true }

local road, byId, errorFields = {}, {}, nil
local all, known = {}, {}
for _, field in pairs(own) do all[#all + 1] = field end

-- One field of Wireshark for all that have a name and a type in common.
local function declare(make, abbreviation, name, note)
  local key = abbreviation .. "\0" .. tostring(make)
  if not known[key] then
    known[key] = make(abbreviation, name, note)
    all[#all + 1] = known[key]
  end
  return known[key]
end

local function double(abbreviation, name, note) return ProtoField.double(abbreviation, name, note) end
local function text(abbreviation, name, note) return ProtoField.string(abbreviation, name, base.UNICODE, note) end
local function bytes(abbreviation, name, note) return ProtoField.bytes(abbreviation, name, base.NONE, note) end
local function mac(abbreviation, name, note) return ProtoField.ether(abbreviation, name, note) end
local function ip(abbreviation, name, note) return ProtoField.ipv4(abbreviation, name, base.NONE, note) end
local function holder(abbreviation, name, note) return ProtoField.none(abbreviation, name, note) end
local made = { text = text, bytes = bytes, gap = bytes, mac = mac, ip = ip, list = holder, group = holder }

local whole = {}
for _, width in ipairs { 1, 2, 4, 8 } do
  for kind, shown in pairs { uint = base.DEC, int = base.DEC, hex = base.HEX } do
    local make = ProtoField[(kind == "hex" and "uint" or kind) .. 8 * width]
    whole[kind .. width] = function(abbreviation, name, note)
      return make(abbreviation, name, shown, nil, nil, note)
    end
  end
end

local function makerOf(field)
  if field.kind == "scaled" or field.divisor then return double end
  return whole[(field.hex and "hex" or field.signed and "int" or "uint") .. field.width]
end

local function prepare(fields, path)
  for _, field in ipairs(fields) do
    if field.kind == "when" then
      prepare(field.fields, path)
      prepare(field.otherwise, path)
    elseif field.kind ~= "details" then
      local name = field.name or "reserved"
      local note = field.note or ""
      local inside = path .. "." .. name
      if field.kind ~= "number" and field.kind ~= "scaled" then
        field.shown = declare(made[field.kind], inside, name, note)
      elseif field.words then
        field.shown = declare(text, inside, name, note)
        field.number = declare(makerOf(field), inside .. ".number", "number", note)
      else
        field.shown = declare(makerOf(field), inside, name, note)
      end
      if field.kind == "scaled" then field.raw = declare(bytes, inside .. ".raw", name, note) end
      if field.kind == "gap" then field.more = { field.shown } end
      if field.fields then prepare(field.fields, inside) end
    end
    field.path = path
  end
end

local function message(one)
  for _, fields in pairs(one.roads) do prepare(fields, "msan." .. one.name) end
  for _, error in pairs(one.errors) do prepare(error.fields, "msan." .. one.name .. ".error") end
  for _, id in ipairs(one.ids) do byId[id] = one end
end

local function errorPacket(fields)
  prepare(fields, "msan.error")
  errorFields = fields
end

-- A second gap of an object is "reserved2".
local FIELD_GAPS = 12
local function declareGaps(fields)
  for _, field in ipairs(fields) do
    if field.kind == "gap" and not field.name then
      for i = 2, FIELD_GAPS do
        field.more[i] = declare(bytes, field.path .. ".reserved" .. i, "reserved" .. i, field.note or "")
      end
    end
    if field.fields then declareGaps(field.fields) end
    if field.otherwise then declareGaps(field.otherwise) end
  end
end

-- DESCRIPTIONS

for _, one in pairs(byId) do
  for _, fields in pairs(one.roads) do declareGaps(fields) end
  for _, error in pairs(one.errors) do declareGaps(error.fields) end
end
declareGaps(errorFields)
proto.fields = all

-- What is being read: the message's bytes, how far, and the numbers that lengths follow from.
local body, at, numbers, current, cut

local function left() return body:len() - at end

local function valueOf(field)
  if not field.source then return field.amount end
  local from = field.source == -2 and left() or numbers[field.source] or 0
  return from * field.factor + field.amount
end

local compare = {
  ["<"] = function(a, b) return a < b end,
  ["<="] = function(a, b) return a <= b end,
  [">"] = function(a, b) return a > b end,
  [">="] = function(a, b) return a >= b end,
}

local function holds(field)
  local value = valueOf(field)
  local any = false
  for _, other in ipairs(field.values) do
    local test = compare[field.sign]
    if test then
      if test(value, other) then return true end
    elseif value == other then
      any = true
    end
  end
  if compare[field.sign] then return false end
  return any == (field.sign == "=")
end

-- A packet of which the capture has a part is not to blame.
local function complain(tree, why)
  if cut then
    tree:add(own.cut, body(at)):append_text(" (the capture has no more of it)")
    return false
  end
  if left() > 0 then tree:add(own.unknown, body(at)) end
  tree:add_proto_expert_info(malformed, why)
  return false
end

local function isZero(range)
  return not range:bytes():tohex():find("[^0]")
end

local function latin1(range)
  local bytes = range:bytes()
  local letters = {}
  for i = 0, bytes:len() - 1 do
    local byte = bytes:get_index(i)
    if byte == 0 then break end
    if byte >= 0x80 then letters[#letters + 1] = string.char(0xC0 + math.floor(byte / 64), 0x80 + byte % 64)
    else letters[#letters + 1] = string.char(byte) end
  end
  return table.concat(letters)
end

local function numberIn(field, range)
  local little = field.little and "le_" or ""
  if field.width < 8 then return range[little .. (field.signed and "int" or "uint")](range) end
  return range[little .. (field.signed and "int64" or "uint64")](range):tonumber()
end

local function addWhole(tree, shown, field, range)
  return field.little and tree:add_le(shown, range) or tree:add(shown, range)
end

local function addNumber(tree, field, range)
  local number = numberIn(field, range)
  local constant = field.fixed and valueOf(field)
  numbers[field.keep] = number
  local item
  if field.fixed or field.counts then
    item = tree:add(field.fixed and own.constant or own.count, range)
    item:set_text(string.format("%s: %s", field.name, tostring(number)))
    if field.fixed and number ~= constant then item:add_proto_expert_info(malformed, "not " .. constant) end
    return
  end
  local word = field.words and field.words[number]
  if field.words then
    item = tree:add(field.shown, range, word or tostring(number))
    if field.divisor then item:add(field.number, range, number / field.divisor)
    else addWhole(item, field.number, field, range) end
  elseif field.divisor then
    item = tree:add(field.shown, range, number / field.divisor)
  else
    item = addWhole(tree, field.shown, field, range)
  end
  if field.unit and not word then item:append_text(" " .. field.unit) end
end

local function addScaled(tree, field, range)
  local decimals = range(1, 1):uint()
  local number = range(2, 4):int()
  local word = field.words and field.words[number]
  if decimals > MOST_DECIMALS then
    tree:add(field.raw, range)
    return
  end
  local value = number / 10 ^ decimals
  local item = tree:add(field.shown, range, field.words and (word or tostring(value)) or value)
  if range(0, 1):uint() ~= 0 and not field.loose then item:add_proto_expert_info(malformed, "not zero") end
  if field.words then item:add(field.number, range, value) end
  if field.unit and not word then item:append_text(" " .. field.unit) end
end

local function addText(tree, field, range)
  local item = tree:add(field.shown, range, latin1(range))
  if not field.loose and range:bytes():raw():find("%z.*%Z") then
    item:add_proto_expert_info(malformed, "bytes behind the end of the text")
  end
end

local function addGap(tree, field, range, gaps)
  local shown = field.shown
  if not field.name then
    gaps.count = gaps.count + 1
    shown = field.more[gaps.count] or shown
  end
  if range:len() == 0 or isZero(range) then
    tree:add(own.reserved, range)
  else
    local item = tree:add(shown, range)
    if not field.loose then item:add_proto_expert_info(malformed, "not zero") end
  end
end

local walk

-- A group, or an item of a list.
local function addHolder(tree, field, label)
  local begin = at
  local item = tree:add(field.shown, body(at, 0))
  item:set_text(label)
  local good = walk(field.fields, item, { count = 0 })
  item:set_len(at - begin)
  return good
end

local function addList(tree, field)
  local toTheEnd = field.source == -2
  local count = toTheEnd and math.huge or valueOf(field)
  local i = 0
  while toTheEnd and left() > 0 or not toTheEnd and i < count do
    local before = at
    if not addHolder(tree, field, string.format("%s[%d]", field.name, i)) then return false end
    if at == before then return complain(tree, "items without a byte: " .. field.name) end
    i = i + 1
  end
  return true
end

local function addDetails(tree, field, gaps)
  local error = current.errors[valueOf(field) % 65536]
  if not error then
    tree:add_proto_expert_info(malformed, "an error that is not described")
    return true
  end
  local outside = numbers
  numbers = {}
  local good = walk(error.fields, tree, gaps)
  numbers = outside
  return good
end

local function addValue(tree, field, gaps)
  local size = field.width or valueOf(field)
  if size < 0 or size > left() then
    return complain(tree, string.format("%s: %d bytes are left of %d", field.name or "reserved", left(), size))
  end
  local range = body(at, size)
  at = at + size
  if field.kind == "number" then addNumber(tree, field, range)
  elseif field.kind == "scaled" then addScaled(tree, field, range)
  elseif field.kind == "text" then addText(tree, field, range)
  elseif field.kind == "gap" then addGap(tree, field, range, gaps)
  else tree:add(field.shown, range) end
  return true
end

local function take(tree, field, gaps)
  if field.kind == "when" then return walk(holds(field) and field.fields or field.otherwise, tree, gaps) end
  if field.kind == "list" then return addList(tree, field) end
  if field.kind == "group" then return addHolder(tree, field, field.name) end
  if field.kind == "details" then return addDetails(tree, field, gaps) end
  return addValue(tree, field, gaps)
end

walk = function(fields, tree, gaps)
  for _, field in ipairs(fields) do
    if not take(tree, field, gaps) then return false end
  end
  return true
end

local function isError(way)
  return way:find("reply", 1, true) and body:len() >= 4 and body(0, 4):uint() == 0x41
end

local function describe(pinfo, way, slot, name)
  local other = way:find("^g?e?pon") and "card " .. slot or way:find("^ngn") and "voice side" or "manager"
  pinfo.cols.protocol = "MSAN"
  pinfo.cols.src = CAME[way] and other or "node"
  pinfo.cols.dst = CAME[way] and "node" or other
  pinfo.cols.info = string.format("%s %s", way, name)
end

-- What a refusal's code means.
local function tellMeaning(tree, pinfo)
  if body:len() < 12 then return end
  local code = body(10, 2)
  local error = current.errors[code:uint()]
  local meaning = error and error.note ~= "" and error.note or "error " .. code:int()
  tree:add(own.meaning, code, meaning):set_generated()
  pinfo.cols.info:append(": refused, " .. meaning)
end

function proto.dissector(tvb, pinfo, root)
  if tvb:len() < HEAD or tvb(0, 1):uint() ~= 1 then return 0 end
  local way = road[tvb(1, 1):uint()] or "?"
  local slot, id = tvb(2, 2):uint(), tvb(4, 2):uint()
  current = byId[id]
  local name = current and current.name or tostring(id)
  describe(pinfo, way, slot, name)
  local tree = root:add(proto, tvb(), string.format("MSAN message: %s %s (%d)", way, name, id))
  tree:add(own.version, tvb(0, 1))
  tree:add(own.road, tvb(1, 1), way)
  tree:add(own.slot, tvb(2, 2))
  tree:add(own.id, tvb(4, 2))
  tree:add(own.length, tvb(8, 4))
  if current then tree:add(own.message, tvb(4, 2), name) end
  body, at, numbers = tvb(HEAD, tvb:len() - HEAD):tvb(), 0, {}
  cut = body:len() < tvb(8, 4):uint()
  local isRefusal = isError(way)
  if isRefusal and body:len() == 4 then
    pinfo.cols.info:append(": refused")
    tree:add(own.meaning, body(), "refused ahead of any message"):set_generated()
    return tvb:len()
  end
  local refused = current and isRefusal
  local fields = current and (refused and errorFields or current.roads[tvb(1, 1):uint()])
  if not fields then
    complain(tree, "no description of this message")
    return tvb:len()
  end
  if refused then tellMeaning(tree, pinfo) end
  local values = tree:add(own.fields, body())
  values:set_text(current.note ~= "" and current.note or name)
  if walk(fields, values, { count = 0 }) and left() > 0 then
    complain(values, string.format("%d bytes behind the last field", left()))
  end
  return tvb:len()
end

DissectorTable.get("wtap_encap"):add(wtap.USER0, proto)
