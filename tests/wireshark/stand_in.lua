-- Runs a dissector without Wireshark, to see that other versions of Lua do with it what the one of
-- the tshark at hand does: LUA stand_in.lua DISSECTOR PACKETS. A line of PACKETS is the name of a
-- dissector and a packet in hexadecimal. Prints what is added to the tree. What Wireshark would
-- refuse (bytes outside the packet, a fraction where a whole number belongs) is an error. The
-- environment variable NUMBERS says how numbers are handed out: float, or whatever Lua makes of them.

local as_float = os.getenv("NUMBERS") == "float"

local function out(number)
    return as_float and number * 1.0 or number
end

local function whole(number, least, most)
    assert(type(number) == "number" and number % 1 == 0, "no whole number")
    assert(number >= least and number <= most, "out of range")
    return math.floor(number)
end

local function new(methods)
    methods.__index = methods
    return function(object)
        return setmetatable(object, methods)
    end
end

-- ---- Bytes ----

local new_range, new_tvb, new_bytes

local Range = {}
new_range = new(Range)
local Tvb = {}
new_tvb = new(Tvb)
local Bytes = {}
new_bytes = new(Bytes)

function Tvb:len()
    return out(#self.data)
end
function Tvb:range(offset, length)
    offset = whole(offset or 0, 0, #self.data)
    length = whole(length or #self.data - offset, 0, #self.data - offset)
    return new_range({data = self.data:sub(offset + 1, offset + length)})
end
Tvb.__call = Tvb.range

function Range:len()
    return out(#self.data)
end
function Range:uint()
    assert(#self.data >= 1 and #self.data <= 4)
    local number = 0
    for i = 1, #self.data do
        number = number * 256 + self.data:byte(i)
    end
    return out(number)
end
function Range:le_uint()
    return new_range({data = self.data:reverse()}):uint()
end
function Range:bitfield(first, count)
    whole(first, 0, 8 * #self.data)
    whole(count, 1, 48)
    assert(first + count <= 8 * #self.data, "bits outside")
    local number = 0
    for bit = first, first + count - 1 do
        local byte = self.data:byte(math.floor(bit / 8) + 1)
        number = number * 2 + math.floor(byte / 2 ^ (7 - bit % 8)) % 2
    end
    return out(math.floor(number))
end
function Range:string()
    return self.data:match("^[^%z]*")
end
function Range:bytes()
    return new_bytes({data = self.data})
end

function Bytes:append(other)
    self.data = self.data .. other.data
end
function Bytes:tvb()
    return new_tvb({data = self.data})
end

local function from_hex(text)
    return (text:gsub("%x%x", function(digits)
        return string.char(tonumber(digits, 16))
    end))
end

ByteArray = {
    new = function(text)
        return new_bytes({data = from_hex(text)})
    end,
}

-- ---- Descriptions ----

local function table_of_names()
    return setmetatable({}, {__index = function(_, name)
        return name
    end})
end

ftypes, base, frametype = table_of_names(), table_of_names(), table_of_names()
expert = {group = table_of_names(), severity = table_of_names()}
ENC_UTF_8 = "utf-8"

local function new_field(name, kind)
    assert(type(name) == "string" and name:match("^[%l%d_.]+$"), name)
    return {name = name, kind = kind}
end

ProtoField = {
    new = function(_, name, kind)
        assert(type(kind) == "string")
        return new_field(name, kind)
    end,
    bool = function(name)
        return new_field(name, "BOOLEAN")
    end,
    framenum = function(name)
        return new_field(name, "FRAMENUM")
    end,
}
ProtoExpert = {
    new = function(name)
        return new_field(name, "EXPERT")
    end,
}
NSTime = {
    new = function(seconds, part)
        return {time = whole(seconds, 0, 2 ^ 53) .. " " .. whole(part, 0, 999999999)}
    end,
}
Address = {
    ether = function(text)
        assert(text:match("^%x%x:%x%x:%x%x:%x%x:%x%x:%x%x$"))
        return {time = text}
    end,
}

local protos = {}
function Proto(name)
    protos[name] = {name = name, fields = {}, experts = {}}
    return protos[name]
end

local decoders = {}
Dissector = {
    get = function(_)
        return {
            call = function(_, tvb, pinfo, tree)
                local decoder = #tvb.data > 0 and decoders[tvb.data:byte(1)]
                if decoder then
                    decoder.dissector(new_tvb({data = tvb.data:sub(2)}), pinfo, tree)
                end
            end,
        }
    end,
}
DissectorTable = {
    get = function(_)
        return {
            get_dissector = function(_)
                return nil
            end,
            add = function(_, code, proto)
                decoders[code] = proto
            end,
        }
    end,
}

-- ---- The tree ----

local LIMITS = {
    UINT8 = {0, 2 ^ 8 - 1},
    UINT16 = {0, 2 ^ 16 - 1},
    UINT24 = {0, 2 ^ 24 - 1},
    UINT32 = {0, 2 ^ 32 - 1},
    INT8 = {-2 ^ 7, 2 ^ 7 - 1},
    INT16 = {-2 ^ 15, 2 ^ 15 - 1},
    INT24 = {-2 ^ 23, 2 ^ 23 - 1},
    INT32 = {-2 ^ 31, 2 ^ 31 - 1},
    FRAMENUM = {1, 2 ^ 32 - 1},
}

local function text_of(kind, value)
    local limits = LIMITS[kind]
    if limits then
        return string.format("%d", whole(value, limits[1], limits[2]))
    elseif type(value) == "number" then
        return string.format("%.6f", value)
    elseif type(value) == "table" then
        return value.time or string.format("%d bytes", #value.data)
    end
    return value
end

local Item = {}
local new_item = new(Item)

function Item:add(field, range, value)
    if not value and not (type(range) == "table" and range.data) then
        range, value = nil, range -- generated
    end
    print(string.rep(" ", self.depth) .. field.name .. " " ..
              (value and text_of(field.kind, value) or range and #range.data or ""))
    return new_item({depth = self.depth + 1})
end
Item.add_le = Item.add
function Item:add_proto_expert_info(note, text)
    print(string.rep(" ", self.depth) .. note.name .. " " .. (text or ""))
end
function Item:append_text(text)
    print(string.rep(" ", self.depth) .. text)
end
Item.set_text = Item.append_text
Item.prepend_text = Item.append_text
function Item:set_len(length)
    whole(length, 0, 2 ^ 31)
end
function Item:set_generated()
    return self
end

-- ---- The packets ----

local dissector, packets = ...
assert(loadfile(dissector))()
protos.qor020.init()
local frame = 0
for line in io.lines(packets) do
    local name, hex = line:match("^(%S+) (%x*)$")
    frame = frame + 1
    print("frame " .. frame)
    local pinfo = {number = out(frame), rel_ts = frame / 8, visited = false, cols = {}}
    local root = new_item({depth = 0})
    if name == "qor020" then
        protos.qor020.dissector(new_tvb({data = from_hex(hex)}), pinfo, root)
    else
        Dissector.get(name):call(new_tvb({data = from_hex(hex)}), pinfo, root)
    end
    print(pinfo.cols.info)
end
