-- ---- What every part uses ----

-- Numbers come as floats in some versions of Lua: %d shows them alike in all.
local function decimal(number)
    return string.format("%d", number)
end

-- A number of bits of a number.
local function bits_of(number, first, count)
    return math.floor(number / 2 ^ first) % 2 ^ count
end

-- NSTime from seconds or nanoseconds that are not negative.
local function time_of(whole, part)
    return NSTime.new(whole, math.max(0, math.min(part, 999999999)))
end

-- Calls a dissector that is not ours; what it finds malformed it has marked itself.
local function call(dissector, tvb, pinfo, tree)
    pcall(dissector.call, dissector, tvb, pinfo, tree)
end

-- ---- Fields ----

local qor020 = Proto("qor020", "WiMAX modem interface")
local registered = {} -- all ProtoFields of it

local function field(name, label, kind, meaning, values, base)
    local made = ProtoField.new(label, "qor020." .. name, kind, values, base, nil, meaning)
    registered[#registered + 1] = made
    return made
end

local KINDS = {
    U8 = {width = 1, type = ftypes.UINT8},
    I8 = {width = 1, type = ftypes.INT8, signed = true},
    U16 = {width = 2, type = ftypes.UINT16},
    I16 = {width = 2, type = ftypes.INT16, signed = true},
    U32 = {width = 4, type = ftypes.UINT32},
    I32 = {width = 4, type = ftypes.INT32, signed = true},
}

local ADDRESS_SIZE = 6

local function field_of(row, name)
    local number = KINDS[row.kind]
    if row.kind == "record" then
        return field(name, row.label, ftypes.NONE, row.meaning)
    elseif row.kind == "text" then
        return field(name, row.label, ftypes.STRING, row.meaning)
    elseif row.kind == "address" and row.count == ADDRESS_SIZE then
        return field(name, row.label, ftypes.ETHER, row.meaning)
    elseif not number then
        return field(name, row.label, ftypes.BYTES, row.meaning)
    elseif row.divisor then
        return field(name, row.label, ftypes.DOUBLE, row.meaning)
    elseif row.codes or row.hexadecimal then
        return field(name, row.label, number.type, row.meaning, row.codes,
                     row.hexadecimal and base.HEX or base.DEC)
    elseif row.unit then
        return field(name, row.label, number.type, row.meaning, {" " .. row.unit}, base.UNIT_STRING)
    end
    return field(name, row.label, number.type, row.meaning, nil, base.DEC)
end

-- The rows of a layout with a field of its own for every place where it can stand.
local function nodes_of(layout, path)
    local nodes = {layout = layout}
    for _, row in ipairs(layout) do
        local name = path .. "." .. row.name
        local node = {row = row, field = field_of(row, name)}
        if row.record then
            node.nodes = nodes_of(row.record, name)
        end
        if row.cases then
            node.cases = {}
            for code, inner in pairs(row.cases) do
                local inner_name = path .. "." .. inner.name
                node.cases[code] = {
                    field = field(inner_name, inner.label, ftypes.NONE, row.meaning),
                    nodes = nodes_of(inner, inner_name),
                }
            end
        end
        nodes[#nodes + 1] = node
    end
    return nodes
end

-- What stands in every message alike.
local PARTS = {
    list = field("list", "List", ftypes.NONE, "numbers, one behind the other"),
    cut = field("cut", "Cut off", ftypes.BYTES, "what is there of an address"),
    rest = field("rest", "Rest", ftypes.BYTES, "what no field describes"),
}

-- ---- Bytes of a record, of which there may be fewer than it should have ----

local function view_of(tvb, from, length)
    return {tvb = tvb, from = from, length = length}
end

-- The bytes from a place on, at most so many.
local function part_of(view, at, most)
    local left = math.max(0, view.length - at)
    return view_of(view.tvb, view.from + math.min(at, view.length), math.min(left, most or left))
end

local function range_of(view)
    return view.tvb:range(view.from, view.length)
end

-- A little-endian number; bytes that are not there are zero.
local function number_at(view, place)
    local kind = KINDS[place.kind]
    local there = part_of(view, place.at, kind.width)
    local number = there.length > 0 and range_of(there):le_uint() or 0
    if kind.signed and number >= 2 ^ (8 * kind.width - 1) then
        return number - 2 ^ (8 * kind.width)
    end
    return number
end

-- ---- Sizes and counts ----

local size_of

local function is_run(row)
    return not KINDS[row.kind] and row.kind ~= "record"
end

local function element_size(row)
    if row.record then
        return row.record.size
    end
    return is_run(row) and 1 or KINDS[row.kind].width
end

-- The elements that there should be, as the counter says or the room.
local function announced_of(row, view)
    if row.counter then
        local count = math.max(0, number_at(view, row.counter))
        return row.counts_bytes and math.floor(count / element_size(row)) or count
    end
    local room = row.count or 1
    if room ~= 0 then
        return room
    end
    return math.ceil(part_of(view, row.at).length / element_size(row))
end

-- The elements to look for: never more than there is room for.
local function to_visit(row, view)
    local announced = announced_of(row, view)
    local room = row.count or 1
    return room == 0 and announced or math.min(announced, room)
end

-- How many bytes a record takes, as its own counts say.
function size_of(layout, view)
    local last = layout[#layout]
    if not last or last.count ~= 0 then
        return layout.size
    end
    local size = last.at
    local left = announced_of(last, view)
    while last.record and left > 0 and size < view.length do
        size = size + size_of(last.record, part_of(view, size))
        left = left - 1
    end
    return math.max(layout.size, size + left * element_size(last))
end

local function has_right_size(message, view)
    return view.length >= message.least and view.length <= message.most and
               (not message.as_counted or view.length == size_of(message.layout, view))
end

-- ---- Expert notes ----

local function expert_note(name, text, group, severity)
    return ProtoExpert.new("qor020." .. name, text, expert.group[group], expert.severity[severity])
end

local NOTES = {
    failed = expert_note("failed", "The call failed", "RESPONSE_CODE", "WARN"),
    length = expert_note("wrong_length", "Not the size of this message", "PROTOCOL", "WARN"),
    unknown = expert_note("unknown_message", "No such message", "UNDECODED", "NOTE"),
    behind = expert_note("behind", "More than its layout says", "PROTOCOL", "WARN"),
    missing = expert_note("missing", "Less than was announced", "PROTOCOL", "WARN"),
    damaged = expert_note("damaged", "No event of a recording", "PROTOCOL", "WARN"),
}

-- ---- Going through what a message holds ----

local show_nodes

local function note_missing(item, present, announced)
    if present < announced then
        item:append_text(" (of " .. decimal(announced) .. ")")
        item:add_proto_expert_info(NOTES.missing)
    end
end

local function show_number(tree, node, view)
    local row = node.row
    local number = number_at(view, {at = 0, kind = row.kind})
    if row.divisor then
        local item = tree:add(node.field, range_of(view), number / row.divisor)
        if row.unit then
            item:append_text(" " .. row.unit)
        end
        return item
    end
    return tree:add(node.field, range_of(view), number)
end

-- Numbers are shown beside short values.
local VALUE_KINDS = {[1] = "U8", [2] = "U16", [4] = "U32"}

local function show_run(tree, node, record)
    local row = node.row
    local announced = announced_of(row, record)
    local view = part_of(record, row.at, to_visit(row, record))
    if view.length == 0 then
        return
    end
    local case = node.cases and node.cases[number_at(record, row.selector)]
    local item
    if case then
        item = tree:add(case.field, range_of(view))
        show_nodes(item, case.nodes, view)
    elseif row.kind == "text" then
        item = tree:add(node.field, range_of(view), range_of(view):string(ENC_UTF_8))
    elseif row.kind == "address" and row.count == ADDRESS_SIZE and view.length < ADDRESS_SIZE then
        item = tree:add(PARTS.cut, range_of(view))
        item:prepend_text(row.label .. ", ")
    else
        item = tree:add(node.field, range_of(view))
        local kind = row.kind == "value" and VALUE_KINDS[view.length]
        if kind then
            item:append_text(" (" .. decimal(number_at(view, {at = 0, kind = kind})) .. ")")
        end
    end
    note_missing(item, view.length, announced)
end

local function show_element(tree, node, view)
    if node.nodes then
        local item = tree:add(node.field, range_of(view))
        show_nodes(item, node.nodes, view)
        return item
    end
    return show_number(tree, node, view)
end

-- Element by element; answers how many there are.
local function show_elements(tree, node, room, most, numbered)
    local count = 0
    while count < most and room.length > 0 do
        local size = node.nodes and size_of(node.row.record, room) or element_size(node.row)
        local view = part_of(room, 0, size)
        local item = show_element(tree, node, view)
        if numbered then
            item:append_text(" [" .. decimal(count) .. "]")
        end
        if not node.nodes and view.length < size then
            item:append_text(" (cut off)")
        end
        room = part_of(room, size)
        count = count + 1
    end
    return count
end

-- Numbers of a list stand in a line of their own, records do not.
local function show_list(tree, node, record)
    local row = node.row
    local room = part_of(record, row.at)
    local most = to_visit(row, record)
    if most == 0 then
        return
    end
    local list = tree
    if not node.nodes or room.length == 0 then
        local width = node.nodes and 0 or most * element_size(row)
        list = tree:add(PARTS.list, range_of(part_of(room, 0, width)))
        list:set_text(row.label)
    end
    local count = show_elements(list, node, room, most, true)
    if list ~= tree then
        list:append_text(": " .. decimal(count))
    end
    note_missing(list, count, announced_of(row, record))
end

function show_nodes(tree, nodes, view)
    for _, node in ipairs(nodes) do
        if is_run(node.row) then
            show_run(tree, node, view)
        elseif node.row.list then
            show_list(tree, node, view)
        else
            show_elements(tree, node, part_of(view, node.row.at), 1, false)
        end
    end
end

-- ---- Messages by what identifies them ----

-- Memory comes in pieces: the bytes that an event has are all that it should have.
for _, row in ipairs(LAYOUTS.RegisterCall) do
    row.counter = nil
end

local messages = {}

local function key_of(way, type, subtype)
    return way .. " " .. decimal(type) .. " " .. (subtype and decimal(subtype) or "any")
end

for _, message in ipairs(MESSAGES) do
    message.field = field(message.name, message.label, ftypes.NONE, message.meaning)
    message.nodes = nodes_of(message.layout, message.name)
    messages[key_of(message.way, message.type, message.subtype)] = message
end

local function find_message(way, type, subtype)
    return messages[key_of(way, type, subtype)] or messages[key_of(way, type)]
end

-- ---- Events ----

local EVENTS = {
    [1] = "session",
    [2] = "open",
    [3] = "open_result",
    [4] = "register",
    [5] = "register_result",
    [6] = "send",
    [7] = "send_result",
    [8] = "message",
    [9] = "message_done",
    [10] = "read_memory",
    [11] = "read_memory_result",
    [12] = "write_memory",
    [13] = "write_memory_result",
    [14] = "close",
    [15] = "close_result",
}
-- By the name of an event, what its bytes are.
local WAYS = {send = "sent", send_result = "written_back", message = "received"}
local MEMORY = {
    read_memory = "read",
    read_memory_result = "read",
    write_memory = "write",
}

local HEAD_SIZE = 36
local HEADER_SIZE = 4
local NO_DEVICE = -1

-- What stands in front of the bytes of every event, as the rows of a layout.
local HEAD = {
    {at = 0, kind = "U8", name = "version", label = "Version", meaning = "of the recording"},
    {at = 1, kind = "U8", name = "kind", label = "Kind", meaning = "what happened", codes = EVENTS},
    {at = 4, kind = "U32", name = "number", label = "Number", meaning = "of this event"},
    {at = 8, kind = "U32", name = "belongs_to", label = "Belongs to", of_ends = true,
     meaning = "number of the call or message that this ends"},
    {at = 12, kind = "I32", name = "result", label = "Result", of_ends = true,
     meaning = "of the call or the callback; of an open, the handle"},
    {at = 24, kind = "U32", name = "handle", label = "Handle", meaning = "of the device"},
    {at = 28, kind = "U32", name = "word", label = "Word", hexadecimal = true,
     meaning = "the address of memory, the context word of a callback"},
    {at = 32, kind = "U32", name = "length", label = "Length",
     meaning = "of the message, or how much memory"},
}
-- Of events that end a call or a message, and of all others.
local head_nodes = {[true] = {}, [false] = {}}
local head_places = {}
for _, row in ipairs(HEAD) do
    local node = {row = row, field = field_of(row, row.name)}
    table.insert(head_nodes[true], node)
    if not row.of_ends then
        table.insert(head_nodes[false], node)
    end
    head_places[row.name] = row
end
local DURATION_LOW = {at = 16, kind = "U32"}
local DURATION_HIGH = {at = 20, kind = "U32"}

local FLAGS = {
    {bit = 0, name = "null", label = "Null pointer", meaning = "a null pointer was handed over"},
    {bit = 1, name = "more", label = "More", meaning = "the bytes go on in the next event"},
    {bit = 2, name = "in_callback", label = "In a callback", meaning = "called inside a callback"},
}
local FLAGS_PLACE = {at = 2, kind = "U16"}
for _, flag in ipairs(FLAGS) do
    flag.field = ProtoField.bool("qor020.flags." .. flag.name, flag.label, 16, nil, 2 ^ flag.bit,
                                 flag.meaning)
    registered[#registered + 1] = flag.field
end

local OWN = {
    flags = field("flags", "Flags", ftypes.UINT16, "what holds of the call", nil, base.HEX),
    duration = field("duration", "Duration", ftypes.RELATIVE_TIME, "of the call or the callback"),
    line = field("origin", "Origin", ftypes.STRING, "where the recording comes from"),
    type = field("type", "Type", ftypes.UINT16, "of the message", nil, base.DEC),
    subtype = field("subtype", "Subtype", ftypes.UINT16, "of the message", nil, base.DEC),
    payload = field("payload", "Payload", ftypes.BYTES, "of a message that is not known"),
    time = field("time", "Time since the request", ftypes.RELATIVE_TIME,
                 "from the request to this answer"),
}

local function frame_field(name, label, meaning, kind)
    local made = ProtoField.framenum("qor020." .. name, label, base.NONE, kind, nil, meaning)
    registered[#registered + 1] = made
    return made
end

-- Links between frames, by their name in what is kept of a frame.
local LINKS = {
    {"call_in", frame_field("call_in", "Call in", "the call or message that this ends", frametype.REQUEST)},
    {"result_in", frame_field("result_in", "Result in", "where this ends", frametype.RESPONSE)},
    {"request_in", frame_field("request_in", "Request in", "the request that this answers",
                               frametype.REQUEST)},
    {"answer_in", frame_field("answer_in", "Answer in", "the answer to this", frametype.RESPONSE)},
}

-- ---- What frames have to do with each other ----

local MOST_WAITING = 16
local LONGEST_WAIT = 600 -- seconds

local links -- by frame
local calls -- by number of the event
local waiting -- requests without an answer, by that answer

function qor020.init()
    links, calls, waiting = {}, {}, {}
end

local function links_of(frame)
    links[frame] = links[frame] or {}
    return links[frame]
end

local function waiting_for(message)
    local key = message and message.answer and key_of("received", message.type, message.answer)
    if key then
        waiting[key] = waiting[key] or {}
    end
    return waiting[key]
end

local function follow_request(event)
    local requests = waiting_for(event.message)
    if requests then
        if #requests == MOST_WAITING then
            table.remove(requests, 1)
        end
        requests[#requests + 1] = {frame = event.frame, time = event.time}
    end
end

-- A person who asks again has given up the question before: the last one is answered first.
local function follow_answer(event)
    local key = event.type and key_of("received", event.type, event.subtype)
    local requests = waiting[key]
    if not requests or #requests == 0 then
        return
    end
    local request = table.remove(requests)
    local waited = event.time - request.time
    if waited < 0 or waited > LONGEST_WAIT then
        waiting[key] = {}
        return
    end
    local own = links_of(event.frame)
    own.request_in, own.waited = request.frame, waited
    links_of(request.frame).answer_in = event.frame
end

-- What was not accepted will not be answered.
local function follow_failure(call)
    local requests = waiting_for(call.message)
    if requests and #requests > 0 and requests[#requests].frame == call.frame then
        table.remove(requests)
    end
end

local function follow(event)
    if event.belongs_to == 0 then
        -- Of a long session, no more than others ask for.
        calls[event.number] = {
            frame = event.frame,
            message = event.message,
            type = event.type,
            subtype = event.subtype,
        }
    else
        local call = calls[event.belongs_to]
        if call then
            local own = links_of(event.frame)
            own.call_in = call.frame
            own.of = call
            links_of(call.frame).result_in = event.frame
            if event.name == "send_result" and event.result ~= 0 then
                follow_failure(call)
            end
        end
    end
    if event.name == "send" then
        follow_request(event)
    elseif event.name == "message" then
        follow_answer(event)
    end
end

local function show_links(tree, event)
    local own = links[event.frame] or {}
    for _, link in ipairs(LINKS) do
        if own[link[1]] then
            tree:add(link[2], own[link[1]]):set_generated()
        end
    end
    if own.waited then
        local seconds = math.floor(own.waited)
        local part = math.floor((own.waited - seconds) * 1e9 + 0.5)
        tree:add(OWN.time, time_of(seconds, part)):set_generated()
    end
end

-- ---- An event ----

-- Hands the management message in a traced message to its own dissector.
local management = Dissector.get("wmx_mac_mgmt_msg_decoder")
local burst = Dissector.get("wimax_pdu_burst_handler")
local TRACE
do
    local trace = LAYOUTS.TraceRecord
    TRACE = {layout = trace}
    for _, row in ipairs(trace) do
        TRACE[row.name] = row
    end
end

local function show_management(event, pinfo, root)
    local payload = event.payload
    local code = number_at(payload, TRACE.code)
    local length = number_at(payload, TRACE.body_length)
    if payload.length < TRACE.body.at or code > 255 or length < 0 then
        return
    end
    local body = part_of(payload, TRACE.body.at, length)
    -- Compressed maps are traced as a DL-MAP and have no type.
    local first = body.length > 0 and range_of(part_of(body, 0, 1)):uint() or 0
    if code == 2 and number_at(payload, TRACE.direction) == 0 and first >= 0xC0 and first < 0xE0 then
        call(burst, range_of(body):bytes():tvb("Compressed maps"), pinfo, root)
        return
    end
    local message = ByteArray.new(string.format("%02x", code))
    if body.length > 0 then
        message:append(range_of(body):bytes())
    end
    call(management, message:tvb("Management message"), pinfo, root)
end

local function show_payload(tree, event)
    local message, payload = event.message, event.payload
    if not message then
        if payload.length > 0 then
            tree:add(OWN.payload, range_of(payload))
        end
        tree:add_proto_expert_info(NOTES.unknown)
        return
    end
    local item = tree:add(message.field, range_of(payload))
    show_nodes(item, message.nodes, payload)
    local behind = part_of(payload, size_of(message.layout, payload))
    if behind.length > 0 and #message.layout > 0 then
        item:add(PARTS.rest, range_of(behind))
    end
    if event.name ~= "send_result" and not has_right_size(message, payload) then
        item:add_proto_expert_info(NOTES.length, "Not the size of this message: " ..
                                       decimal(payload.length) .. " bytes")
    end
end

local function show_session(tree, view)
    if view.length > 0 then
        for line in range_of(view):string(ENC_UTF_8):gmatch("[^\n]+") do
            tree:add(OWN.line, range_of(view), line)
        end
    end
end

local function has_failed(event)
    if event.name == "open_result" then
        return event.result == NO_DEVICE
    end
    return event.name:find("_result", 1, true) and event.result ~= 0
end

-- Takes the event apart as far as other events need it.
local function read_event(tvb, pinfo)
    local view = view_of(tvb, 0, tvb:len())
    local event = {
        view = view,
        frame = pinfo.number,
        time = pinfo.rel_ts,
        name = EVENTS[number_at(view, head_places.kind)],
        number = number_at(view, head_places.number),
        belongs_to = number_at(view, head_places.belongs_to),
        result = number_at(view, head_places.result),
        length = number_at(view, head_places.length),
        bytes = part_of(view, HEAD_SIZE),
    }
    local way = WAYS[event.name]
    if way then
        local record = event.bytes
        if way ~= "written_back" then
            record = part_of(record, 0, event.length)
        end
        event.payload = record
        if record.length >= HEADER_SIZE then
            event.payload = part_of(record, HEADER_SIZE)
            event.type = number_at(record, {at = 0, kind = "U16"})
            event.subtype = number_at(record, {at = 2, kind = "U16"})
            event.message = find_message(way, event.type, event.subtype)
        end
    elseif MEMORY[event.name] then
        -- Address and count stand in front of the bytes, as in the description of a call.
        event.payload = part_of(view, head_places.word.at)
        event.message = find_message(MEMORY[event.name], 0, 0)
    end
    return event
end

local function info_of(event)
    local call = links[event.frame] and links[event.frame].of
    local of = event.type and event or call or event
    local info = "#" .. decimal(event.number) .. " " .. event.name
    if of.type then
        info = info .. " " .. (of.message and of.message.name or "unknown_message") .. " " ..
                   decimal(of.type) .. "/" .. decimal(of.subtype)
    end
    if event.name == "send" or event.name == "message" then
        info = info .. ", " .. decimal(event.length) .. " bytes"
    elseif event.name:find("_result", 1, true) then
        info = info .. ", " .. (event.name == "open_result" and "handle " or "result ") ..
                   decimal(event.result)
    end
    return info
end

local CLIENT, MODEM = "client", "modem"

local function show_columns(event, pinfo)
    local received = event.name == "message" or event.name:find("_result", 1, true)
    pinfo.cols.protocol = "QOR020"
    pinfo.cols.src = received and MODEM or CLIENT
    pinfo.cols.dst = received and CLIENT or MODEM
    pinfo.cols.info = info_of(event)
end

local function show_head(tree, event)
    local tvb = event.view.tvb
    local ends = event.belongs_to ~= 0
    show_nodes(tree, head_nodes[ends], part_of(event.view, 0, HEAD_SIZE))
    local flags_range = tvb:range(FLAGS_PLACE.at, 2)
    local flags = tree:add_le(OWN.flags, flags_range)
    for _, flag in ipairs(FLAGS) do
        flags:add_le(flag.field, flags_range)
    end
    if ends then
        local duration = number_at(event.view, DURATION_LOW) +
                             number_at(event.view, DURATION_HIGH) * 2 ^ 32
        local seconds = math.floor(duration / 1e9)
        tree:add(OWN.duration, tvb:range(DURATION_LOW.at, 8),
                 time_of(seconds, duration - seconds * 1e9))
    end
end

function qor020.dissector(tvb, pinfo, root)
    local tree = root:add(qor020, tvb())
    local version = tvb:len() > 0 and tvb:range(0, 1):uint()
    if tvb:len() < HEAD_SIZE or version ~= 1 or not EVENTS[tvb:range(1, 1):uint()] then
        tree:add_proto_expert_info(NOTES.damaged)
        pinfo.cols.protocol = "QOR020"
        pinfo.cols.info = "no event of a recording, or of a newer one"
        return tvb:len()
    end
    local event = read_event(tvb, pinfo)
    if not pinfo.visited then
        follow(event)
    end
    tree:append_text(", " .. event.name)
    show_head(tree, event)
    show_links(tree, event)
    if has_failed(event) then
        tree:add_proto_expert_info(NOTES.failed, "The call failed: " .. decimal(event.result))
    end
    if event.type then
        tree:add(OWN.type, event.bytes.tvb:range(HEAD_SIZE, 2), event.type)
        tree:add(OWN.subtype, event.bytes.tvb:range(HEAD_SIZE + 2, 2), event.subtype)
    end
    if event.name == "session" then
        show_session(tree, event.bytes)
    elseif event.payload and (event.type or event.payload.length > 0) then
        show_payload(tree, event)
    end
    if event.message and event.message.layout == TRACE.layout then
        show_management(event, pinfo, root)
    end
    show_columns(event, pinfo)
    return tvb:len()
end

qor020.fields = registered
for _, note in pairs(NOTES) do
    qor020.experts[#qor020.experts + 1] = note
end
