-- Finds the calls and replies of remote programs in UDP and TCP, and reads them by the tables above:
--   rpc[TYPE], api[TYPE]   the types of the envelope and of the interface files. A type is one of
--                            {struct = {MEMBER...}}
--                            {union = DISCRIMINANT, arms = {[NUMBER] = MEMBER or false for void}, default = true}
--                            {enum = {[NUMBER] = NAME}}
--                            {typedef = MEMBER}
--                          where a MEMBER is {NAME, TYPE}, with `fixed` (elements or bytes), `most` or `optional`.
--   programs[NUMBER]       {NAME, {[VERSION] = {NAME, {[PROCEDURE] = {NAME, ARGUMENT, RESULT}}}}}
-- A message is refused where the codec refuses it, and has the findings of `quorvaxdr validate`.

local deepestNesting = 512  -- of values; deeper ones are refused
local deepestTree = 200     -- parts that nest deeper are shown at this depth, because Wireshark has a limit
local mostRecord = 65535 + 1024  -- bytes of a record: a message and its envelope
local mostFragments = 1024       -- of a record
local callHeader = 24            -- bytes of a call up to the procedure number
local replyHeader = 12           -- bytes of a reply up to its status

local quorva = Proto("quorva", "Calls and Replies of Remote Programs (QUORVA)")

-- ---- Fields and findings --------------------------------------------------------------------------------------------

local fields = {}  -- all ProtoFields

local function newField(kind, ...)
    local field = ProtoField[kind](...)
    fields[#fields + 1] = field
    return field
end

local own = {
    xid = newField("uint32", "quorva.rpc.xid", "Transaction", base.HEX),
    program = newField("uint32", "quorva.rpc.program", "Program", base.DEC),
    version = newField("uint32", "quorva.rpc.version", "Version", base.DEC),
    procedure = newField("uint32", "quorva.rpc.procedure", "Procedure", base.DEC),
    name = newField("string", "quorva.rpc.name", "Name"),
    responseIn = newField("framenum", "quorva.rpc.response_in", "Reply in frame", base.NONE, frametype.RESPONSE),
    requestIn = newField("framenum", "quorva.rpc.request_in", "Call in frame", base.NONE, frametype.REQUEST),
    repeats = newField("framenum", "quorva.rpc.repeats", "Repeats the call in frame", base.NONE),
    time = newField("relative_time", "quorva.rpc.time", "Time from the call"),
    data = newField("bytes", "quorva.rpc.data", "Bytes that are not decoded"),
}

local findings = {}  -- by code

local function newFinding(code, text, group, severity)
    findings[code] = ProtoExpert.new("quorva.finding." .. code, text, group, severity)
end

newFinding("unknown-enumerator", "The number has no enumerator", expert.group.PROTOCOL, expert.severity.NOTE)
newFinding("boolean-not-0-1", "A Boolean or a presence is not 0 or 1", expert.group.PROTOCOL, expert.severity.WARN)
newFinding("padding-not-zero", "The padding is not zero", expert.group.PROTOCOL, expert.severity.WARN)
newFinding("value-cut", "The number has more bits than its type", expert.group.PROTOCOL, expert.severity.WARN)
newFinding("count-cut", "The count has more than 16 bits", expert.group.PROTOCOL, expert.severity.WARN)
newFinding("text-holds-zero", "The string has a zero byte", expert.group.PROTOCOL, expert.severity.WARN)
newFinding("text-not-valid", "The string is not UTF-8", expert.group.PROTOCOL, expert.severity.WARN)
newFinding("attribute-mismatch", "The union has another attribute", expert.group.PROTOCOL, expert.severity.WARN)
newFinding("left-over", "Bytes follow the value", expert.group.PROTOCOL, expert.severity.WARN)
newFinding("refused", "A decode stops here", expert.group.MALFORMED, expert.severity.ERROR)
newFinding("capture-cut", "The capture lacks the rest", expert.group.UNDECODED, expert.severity.NOTE)
newFinding("not-a-record", "No record begins here", expert.group.UNDECODED, expert.severity.WARN)

local function add(item, code, sentence)
    item:add_proto_expert_info(findings[code], sentence)
end

-- ---- Types: names become references, and each member gets its fields ------------------------------------------------

local function number(name, bits, signed, unitBits)
    return {name = name, bits = bits, signed = signed, unitBits = unitBits or 32}
end

local builtins = {
    Boolean = number("Boolean", 8),
    ShortInteger = number("ShortInteger", 8, true, 8),
    ShortNatural = number("ShortNatural", 8),
    Integer = number("Integer", 16, true),
    Natural = number("Natural", 16),
    LongInteger = number("LongInteger", 32, true),
    LongNatural = number("LongNatural", 32),
    UINT = number("UINT", 32),
    Float = number("Float", 32),
}

local function formOf(member)
    if member.optional then return "optional" end
    if member[2] == "string" then return "string" end
    if member[2] == "opaque" then return member.fixed and "fixedOpaque" or "opaque" end
    return member.fixed and "fixedArray" or member.most and "array" or "single"
end

local function link(member, types)
    member.form = formOf(member)
    member.type = types[member[2]] or builtins[member[2]]
end

local function canonical(type)
    while type.typedef and type.typedef.form == "single" do type = type.typedef.type end
    return type
end

local function newValueField(abbreviation, name, use)
    local type = use.form == "single" and use.type or {}
    if use.form == "string" then return newField("string", abbreviation, name) end
    if use.form == "opaque" or use.form == "fixedOpaque" then return newField("bytes", abbreviation, name) end
    if type.enum then return newField("int32", abbreviation, name, base.DEC, type.enum) end
    if type == builtins.Boolean then return newField("bool", abbreviation, name) end
    if type == builtins.Float then return newField("float", abbreviation, name) end
    if type.bits then return newField(type.signed and "int32" or "uint32", abbreviation, name, base.DEC) end
    return newField("none", abbreviation, name)
end

-- The fields of a member: of its value or of each element, of the count of an array, of the presence of an optional.
local function fieldsOf(abbreviation, name, member)
    local made = {abbreviation = abbreviation, name = name}
    local passed = {}  -- a typedef may be an array of itself
    local use = member
    while true do
        local isArray = use.form == "array" or use.form == "fixedArray"
        if isArray and not made.count then
            made.count = newField("uint32", abbreviation .. ".count", name .. ", elements", base.DEC)
        elseif use.form == "optional" and not made.present then
            made.present = newField("bool", abbreviation .. ".present", name .. " is present")
        end
        if not use.type or not use.type.typedef or passed[use.type] then break end
        passed[use.type] = true
        use = use.type.typedef
    end
    local isOfValues = use.type and (isArray or use.form ~= "single") and not use.type.typedef
    made.value = newValueField(abbreviation, name, isOfValues and {form = "single", type = use.type} or use)
    return made
end

-- The number of the member that names an attribute: the next one is a union whose discriminant has the same type.
local function attributeOf(struct)
    for i = 1, #struct - 1 do
        local id, value = struct[i], struct[i + 1]
        if id.form == "single" and value.form == "single" then
            local union = canonical(value.type).union
            if union and union[2] == id[2] then return i end
        end
    end
    return nil
end

local function linkAll(types, prefix)
    local members = {}  -- with the type that has them
    for name, type in pairs(types) do
        type.name = name
        if type.enum then type.bits, type.signed, type.unitBits = 32, true, 32 end
        for _, member in ipairs(type.struct or {}) do members[#members + 1] = {type, member} end
        for _, member in pairs(type.arms or {}) do
            if member then members[#members + 1] = {type, member} end
        end
        if type.union then members[#members + 1] = {type, type.union} end
        if type.typedef then link(type.typedef, types) end
    end
    for _, each in ipairs(members) do link(each[2], types) end
    local shared = {}  -- arms of one name are one member
    for _, each in ipairs(members) do
        local type, member = each[1], each[2]
        local abbreviation = prefix .. type.name .. "." .. member[1]
        shared[abbreviation] = shared[abbreviation] or fieldsOf(abbreviation, member[1], member)
        member.fields = shared[abbreviation]
    end
    for _, type in pairs(types) do
        if type.struct then
            type.attribute = attributeOf(type.struct)
            type.idType = type.attribute and canonical(type.struct[type.attribute].type)
        end
        if type.union then type.scalar = canonical(type.union.type) end
    end
end

linkAll(rpc, "quorva.rpc.")
linkAll(api, "quorva.")

-- Arguments and results: a member without a struct, whose field has the name of the type. Void is nil.
local roots = {}
local function rootOf(types, prefix, name)
    if name == "void" then return nil end
    if not roots[prefix .. name] then
        local member = {name, name}
        link(member, types)
        member.fields = fieldsOf(prefix .. name, name, member)
        roots[prefix .. name] = member
    end
    return roots[prefix .. name]
end

local envelope = rootOf(rpc, "quorva.rpc.", "RpcMessage")
for _, program in pairs(programs) do
    for _, version in pairs(program[2]) do
        for _, procedure in pairs(version[2]) do
            procedure.argument = rootOf(api, "quorva.", procedure[2])
            procedure.result = rootOf(api, "quorva.", procedure[3])
        end
    end
end

quorva.fields = fields
do
    local list = {}
    for _, finding in pairs(findings) do table.insert(list, finding) end
    quorva.experts = list
end

-- ---- Texts ----------------------------------------------------------------------------------------------------------

local function byteCount(bytes)
    return bytes == 0 and "no byte" or bytes == 1 and "1 byte" or string.format("%d bytes", bytes)
end

-- 786,420
local function grouped(count)
    local digits = string.format("%d", count)
    local first = (#digits - 1) % 3 + 1
    return digits:sub(1, first) .. digits:sub(first + 1):gsub("...", ",%0")
end

local function numberText(type, value)
    if type == builtins.Boolean and value <= 1 then return value == 1 and "true" or "false" end
    local name = type.enum and type.enum[value]
    return name and string.format("%s (%d)", name, value) or string.format("%d", value)
end

-- The length of the well-formed UTF-8 sequence at a place of the text; nil if there is none.
local function sequenceLength(text, at)
    local lead, second, third, fourth = text:byte(at, at + 3)
    local function continues(byte) return byte and byte >= 0x80 and byte <= 0xBF end
    if lead < 0x80 then return 1 end
    if lead < 0xC2 or lead > 0xF4 or not continues(second) then return nil end
    if lead < 0xE0 then return 2 end
    if not continues(third) then return nil end
    if lead < 0xF0 then
        local isOverlong = lead == 0xE0 and second < 0xA0
        local isSurrogate = lead == 0xED and second > 0x9F
        return not isOverlong and not isSurrogate and 3 or nil
    end
    local isOverlong = lead == 0xF0 and second < 0x90
    local isBeyond = lead == 0xF4 and second > 0x8F
    return continues(fourth) and not isOverlong and not isBeyond and 4 or nil
end

-- The text with U+FFFD for each byte that is not UTF-8; nil if the text is UTF-8.
local function repaired(text)
    local pieces, isValid, at = {}, true, 1
    while at <= #text do
        local length = sequenceLength(text, at)
        pieces[#pieces + 1] = length and text:sub(at, at + length - 1) or "\239\191\189"
        at = at + (length or 1)
        isValid = isValid and length
    end
    return not isValid and table.concat(pieces) or nil
end

-- ---- Reading a message ----------------------------------------------------------------------------------------------
-- A reading `m` has the bytes `tvb`, of which `captured` are there; the message has `size`, which is infinite if it is
-- not known. `at` is the next byte, `begin` that of the part that is being read, and `path` has the open members,
-- elements (numbers) and arms (false).
-- The functions that read return false, or nil for a number, after they have shown why the reading stopped.

local function newReading(tvb, size)
    return {tvb = tvb, captured = tvb:len(), size = size, at = 0, begin = 0, origin = 0, path = {}, level = 0}
end

local function enter(m, step) m.path[#m.path + 1] = step end
local function leave(m) m.path[#m.path] = nil end

local function pathText(m, last)
    local steps = {}
    for _, step in ipairs(m.path) do
        if step then steps[#steps + 1] = "/" .. step end
    end
    return table.concat(steps) .. (last and "/" .. last or "")
end

-- `last` is a step that is no longer open.
local function refuse(m, item, sentence, last)
    m.refused = true
    local path = pathText(m, last)
    local place = string.format("%sbyte %d", path == "" and "" or path .. ", ", m.begin - m.origin)
    add(item, "refused", place .. ": " .. sentence)
    return false
end

-- True if the capture has the next bytes; the message has them in any case.
local function isCaptured(m, item, bytes)
    if m.captured - m.at >= bytes then return true end
    local all = m.size < math.huge and string.format("of %d bytes", m.size) or "bytes of the message"
    add(item, "capture-cut", string.format("the capture has %d %s", m.captured, all))
    return false
end

local function readUnit(m, item)
    local left = m.size - m.at
    if left < 4 then
        refuse(m, item, byteCount(left) .. " left where a unit of 4 is needed")
        return nil
    end
    if not isCaptured(m, item, 4) then return nil end
    m.at = m.at + 4
    return m.tvb(m.at - 4, 4):uint()
end

-- Moves past contents and their padding.
local function passContents(m, item, size)
    m.begin = m.at
    local left, padding = m.size - m.at, -size % 4
    if left < size then
        return refuse(m, item, string.format("%s left where %d are needed", byteCount(left), size))
    end
    if not isCaptured(m, item, math.min(size + padding, left)) then return false end
    if left < size + padding then
        m.at = m.at + size
        return refuse(m, item, "the message ends within the padding of " .. byteCount(size))
    end
    m.at = m.at + size + padding
    return true
end

-- Adds a part that begins at `from`. Returns its item, and the one to add its parts to.
local function openGroup(m, tree, field, from, prefix, ...)
    local item = tree:add(field, m.tvb(from, 0), ...)
    if prefix then item:prepend_text(prefix) end
    m.level = m.level + 1
    return item, m.level > deepestTree and tree or item
end

local function closeGroup(m, item, from)
    item:set_len(m.at - from)
    m.level = m.level - 1
end

local visitType, visitUse  -- return true if the value was read, its number or discriminant, and its item

local function cutText(type, unit, value)
    local wire = type.signed and unit >= 0x80000000 and unit - 0x100000000 or unit
    if wire == value then
        return string.format("%08x, decoded as %d, which an encode writes as %08x", unit, value, value % 0x100)
    end
    local most = 2 ^ (type.bits - (type.signed and 1 or 0)) - 1
    local least = type.signed and -most - 1 or 0
    return string.format("%d, decoded as %d: a %s holds %d to %d", wire, value, type.name, least, most)
end

local function visitNumber(m, tree, field, type, prefix)
    m.begin = m.at
    local unit = readUnit(m, tree)
    if not unit then return false end
    local value = unit % 2 ^ type.bits
    if type.signed and value >= 2 ^ (type.bits - 1) then value = value - 2 ^ type.bits end
    local range = m.tvb(m.begin, 4)
    local isBoolean = type == builtins.Boolean
    local shown = value
    if isBoolean then shown = value ~= 0 elseif type == builtins.Float then shown = range:float() end
    local item = tree:add(field.value, range, shown)
    if prefix then item:prepend_text(prefix) end
    if type.enum and not type.enum[value] then
        add(item, "unknown-enumerator", string.format("%d is not an enumerator of %s", value, type.name))
    end
    if isBoolean then
        local decoded = unit > 0xFF and ", decoded as " .. numberText(type, value) or ""
        if unit > 1 then add(item, "boolean-not-0-1", string.format("%d%s", unit, decoded)) end
        if value > 1 then item:append_text(string.format(" (%d)", value)) end
    elseif value % 2 ^ type.unitBits ~= unit then
        add(item, "value-cut", cutText(type, unit, value))
    end
    if m.seen then m.seen[field.abbreviation] = value end
    return true, value, item
end

local function visitStruct(m, tree, field, type, prefix)
    local from = m.at
    local item, inner = openGroup(m, tree, field.value, from, prefix)
    local id, named
    for i, member in ipairs(type.struct) do
        enter(m, member[1])
        local isRead, value, part = visitUse(m, inner, member.fields, member)
        if id and i == type.attribute + 1 and value and value ~= id then
            add(named, "attribute-mismatch", string.format("%s %s, but the union has %s %s", type.struct[i - 1][1],
                numberText(type.idType, id), canonical(member.type).union[1], numberText(type.idType, value)))
        end
        if not isRead then
            closeGroup(m, item, from)
            return false
        end
        if i == type.attribute then id, named = value, part end
        leave(m)
    end
    closeGroup(m, item, from)
    return true, nil, item
end

local function visitUnion(m, tree, field, type, prefix)
    local from = m.at
    local item, inner = openGroup(m, tree, field.value, from, prefix)
    local function visitParts()
        local discriminant = type.union
        enter(m, discriminant[1])
        local isRead, value, part = visitNumber(m, inner, discriminant.fields, type.scalar)
        if not isRead then return false end
        leave(m)
        enter(m, false)
        local arm = type.arms[value]
        if arm == nil and not type.default then
            local text = numberText(type.scalar, value)
            local sentence = string.format("%s %s has no arm in %s", discriminant[1], text, type.name)
            return refuse(m, part, sentence, discriminant[1]), value
        end
        if arm then
            enter(m, arm[1])
            if not visitUse(m, inner, arm.fields, arm) then return false, value end
            leave(m)
        end
        leave(m)
        return true, value
    end
    local isRead, value = visitParts()
    closeGroup(m, item, from)
    return isRead, value, item
end

function visitType(m, tree, field, type, prefix)
    if #m.path > deepestNesting then
        return refuse(m, tree, string.format("elements are nested deeper than %d levels", deepestNesting))
    end
    if type.typedef then return visitUse(m, tree, field, type.typedef, prefix) end
    if type.struct then return visitStruct(m, tree, field, type, prefix) end
    if type.union then return visitUnion(m, tree, field, type, prefix) end
    return visitNumber(m, tree, field, type, prefix)
end

local function visitElements(m, inner, field, use, count)
    for i = 0, count - 1 do
        enter(m, i)
        if not visitType(m, inner, field, use.type, string.format("[%d] ", i)) then return false end
        leave(m)
    end
    return true
end

local function beyond(what, count, most)
    return string.format("%s %d is beyond the maximum %d", what, count, most)
end

-- Adds the findings of a count to its item; false if it is refused.
local function examineCount(m, item, unit, most)
    local count = unit % 0x10000
    if unit > 0xFFFF then
        add(item, "count-cut", string.format("count %s, decoded as %s", grouped(unit), grouped(count)))
    end
    if count <= most then return true end
    local cut = unit > 0xFFFF and string.format(" (the low 16 bits of %d)", unit) or ""
    return refuse(m, item, beyond("count", count, most) .. cut)
end

local function examineText(item, text)
    local zero = text:find("\0", 1, true)
    if zero then
        add(item, "text-holds-zero", string.format("the string has %s bytes, decoded up to the zero byte at %s",
            grouped(#text), grouped(zero - 1)))
    elseif repaired(text) then
        add(item, "text-not-valid", "the string is not UTF-8")
    end
end

-- Reads and shows contents, for a string together with its length, a unit at `from`. `examine` adds findings of the
-- length to the item and returns false if it is refused.
local function visitContents(m, tree, field, use, from, size, prefix, examine)
    local isAccepted = size <= (use.most or size)
    local isText = use.form == "string"
    local item, text
    if isAccepted and size <= m.captured - m.at then
        text = m.tvb(m.at, size):raw()
        if isText then
            local whole = m.tvb(from, math.min(m.at + size + -size % 4, m.captured) - from)
            local known = text:match("^[^\0]*")
            item = tree:add(field.value, whole, known:find("[\128-\255]") and repaired(known) or known)
        else
            item = tree:add(field.value, m.tvb(m.at, size))
            if not text:find("[^\32-\126]") then item:append_text(' "' .. text .. '"') end
        end
        if size == 0 then item:set_text(field.name .. ": empty") end
    else
        item = tree:add(m.tvb(from, m.at - from), string.format("%s: %s", field.name, byteCount(size)))
    end
    if prefix then item:prepend_text(prefix) end
    if examine and not examine(item) then return false end
    if size == 0 then return true, nil, item end

    local begin = m.at
    local isRead = passContents(m, item, size)
    if isText and m.at > begin then examineText(item, text) end
    if not isRead then return false end
    local padding = m.at - begin - size
    local filling = padding > 0 and m.tvb(begin + size, padding):raw() or ""
    if filling:find("[^\0]") then
        local digits = filling:gsub(".", function(byte) return string.format("%02x", byte:byte()) end)
        add(item, "padding-not-zero", "the padding is " .. digits)
    end
    return true, nil, item
end

local forms = {}

function forms.single(m, tree, field, use, prefix)
    return visitType(m, tree, field, use.type, prefix)
end

function forms.fixedArray(m, tree, field, use, prefix)
    local from = m.at
    local item, inner = openGroup(m, tree, field.count, from, prefix, use.fixed)
    local isRead = visitElements(m, inner, field, use, use.fixed)
    closeGroup(m, item, from)
    return isRead, nil, item
end

function forms.array(m, tree, field, use, prefix)
    local from = m.at
    local unit = readUnit(m, tree)
    if not unit then return false end
    local count = unit % 0x10000
    local item, inner = openGroup(m, tree, field.count, from, prefix, count)
    local isRead = examineCount(m, item, unit, use.most) and visitElements(m, inner, field, use, count)
    closeGroup(m, item, from)
    return isRead, nil, item
end

function forms.optional(m, tree, field, use, prefix)
    local from = m.at
    local unit = readUnit(m, tree)
    if not unit then return false end
    local isPresent = unit % 0x100 == 1
    local item, inner = openGroup(m, tree, field.present, from, prefix, isPresent)
    if unit > 1 then
        add(item, "boolean-not-0-1", string.format("the presence is %d, decoded as %d", unit, isPresent and 1 or 0))
    end
    local isRead = not isPresent or visitType(m, inner, field, use.type)
    closeGroup(m, item, from)
    return isRead, nil, item
end

function forms.string(m, tree, field, use, prefix)
    local from = m.at
    local length = readUnit(m, tree)
    if not length then return false end
    return visitContents(m, tree, field, use, from, length, prefix, function(item)
        return length <= use.most or refuse(m, item, beyond("length", length, use.most))
    end)
end

function forms.opaque(m, tree, field, use, prefix)
    local from = m.at
    local unit = readUnit(m, tree)
    if not unit then return false end
    return visitContents(m, tree, field, use, from, unit % 0x10000, prefix, function(item)
        return examineCount(m, item, unit, use.most)
    end)
end

function forms.fixedOpaque(m, tree, field, use, prefix)
    return visitContents(m, tree, field, use, m.at, use.fixed, prefix)
end

function visitUse(m, tree, field, use, prefix)
    m.begin = m.at
    return forms[use.form](m, tree, field, use, prefix)
end

-- Reads an argument, a result or the envelope. True if it was read.
local function readRoot(m, tree, root)
    m.origin, m.path, m.level = m.at, {}, 0
    return (visitUse(m, tree, root.fields, root))
end

-- ---- Calls and their replies ----------------------------------------------------------------------------------------

-- An exchange has the frames `call` and `reply`, the time `called` of the call, and its `header`.
local latest     -- the latest exchange of each xid between two ends
local exchanges  -- by frame and header

local function forget() latest, exchanges = {}, {} end
forget()
quorva.init = forget  -- Wireshark opens a capture

-- What a message says of itself at its beginning; nil if it cannot be a call or a reply.
local function headerOf(tvb, at)
    local left = tvb:len() - at
    local function unit(i) return tvb(at + 4 * i, 4):uint() end
    if left < replyHeader then return nil end
    local header = {xid = unit(0), isCall = unit(1) == 0}
    if not header.isCall then return unit(1) == 1 and unit(2) <= 1 and header or nil end
    if left < callHeader or unit(2) ~= 2 then return nil end
    header.program, header.version, header.procedure = unit(3), unit(4), unit(5)
    return header
end

-- The exchange of a message; a call begins one. Nil for a reply whose call was not seen. Wireshark visits frames again
-- in any order, so only the first visit decides.
local function exchangeOf(pinfo, header, transport)
    local id = string.format("%d %d %s", pinfo.number, header.xid, header.isCall and "call" or "reply")
    if pinfo.visited or exchanges[id] then return exchanges[id] end
    local from = string.format("%s %d", pinfo.src, pinfo.src_port)
    local to = string.format("%s %d", pinfo.dst, pinfo.dst_port)
    if not header.isCall then from, to = to, from end
    local key = string.format("%s %s %s %d", transport, from, to, header.xid)
    local exchange = latest[key]
    if header.isCall then
        local isRepeated = exchange and not exchange.reply and exchange.header.program == header.program and
            exchange.header.version == header.version and exchange.header.procedure == header.procedure
        if not isRepeated then
            exchange = {header = header, call = pinfo.number, called = pinfo.rel_ts}
            latest[key] = exchange
        end
    elseif exchange and not exchange.reply then
        exchange.reply = pinfo.number
    end
    exchanges[id] = exchange
    return exchange
end

-- The names of a call, and the types of its procedure; nil where the interface files do not know it.
local function describe(header)
    local program = programs[header.program]
    local version = program and program[2][header.version]
    local procedure = version and version[2][header.procedure]
    local texts = {
        program = program and program[1] or string.format("program %d", header.program),
        version = version and version[1],
        procedure = procedure and procedure[1] or string.format("procedure %d", header.procedure),
    }
    texts.name = texts.program .. (program and not version and string.format(" version %d", header.version) or "") ..
        (procedure and "." or " ") .. texts.procedure
    return texts, procedure
end

local function addGenerated(tree, field, value, text)
    local item = tree:add(field, value):set_generated()
    if text then item:append_text(" (" .. text .. ")") end
end

-- `call` is the header of the call, nil if it was not seen.
local function showExchange(root, pinfo, header, call, exchange, texts)
    addGenerated(root, own.xid, header.xid)
    if call then
        addGenerated(root, own.name, texts.name)
        addGenerated(root, own.program, call.program, texts.program)
        addGenerated(root, own.version, call.version, texts.version)
        addGenerated(root, own.procedure, call.procedure, texts.procedure)
    end
    if not exchange then return end
    if header.isCall then
        if exchange.call ~= pinfo.number then addGenerated(root, own.repeats, exchange.call) end
        if exchange.reply then addGenerated(root, own.responseIn, exchange.reply) end
    else
        addGenerated(root, own.requestIn, exchange.call)
        local seconds = pinfo.rel_ts - exchange.called
        local whole = math.floor(seconds)
        addGenerated(root, own.time, NSTime.new(whole, math.floor((seconds - whole) * 1e9 + 0.5)))
    end
end

-- Why a reply has no result: "PROC_UNAVAIL", "AUTH_ERROR AUTH_TOOWEAK"; nil if it has one.
local function failureOf(seen)
    local function name(type, member)
        local value = seen["quorva.rpc." .. type .. "." .. member]
        return value and (rpc[canonical(rpc[type].union.type).name].enum[value] or string.format("%d", value))
    end
    local accepted = seen["quorva.rpc.AcceptedOutcome.stat"]
    if accepted then return accepted ~= 0 and name("AcceptedOutcome", "stat") or nil end
    local reason = seen["quorva.rpc.RejectedReply.reason"]
    local why = reason and (rpc.AuthStat.enum[reason] or string.format("%d", reason))
    return (name("RejectedReply", "stat") or "denied") .. (why and " " .. why or "")
end

-- Shows what follows the envelope: the argument or the result.
local function readBody(m, root, header, procedure)
    local what = header.isCall and "argument" or "result"
    local body = procedure and procedure[what]
    local after = body and body[1] or "void"
    local function rest() return m.tvb(m.at, m.captured - m.at) end
    if procedure then
        if body and not readRoot(m, root, body) then
            if m.at < m.captured then root:add(own.data, rest()) end
            return
        end
        local left = m.size - m.at
        if left == 0 or left == math.huge then return end
        local item = m.at < m.captured and root:add(own.data, rest()) or root
        add(item, "left-over", string.format("%s %s left over after %s", grouped(left), left == 1 and "byte is" or
            "bytes are", after))
    elseif m.at < m.captured then
        root:add(own.data, rest())
    end
end

-- Reads one message, whose bytes `tvb` has as far as the capture has them.
local function dissectMessage(tvb, size, header, pinfo, tree, transport, isFirst)
    local exchange = exchangeOf(pinfo, header, transport)
    local call = header.isCall and header or exchange and exchange.header
    local texts, procedure
    if call then texts, procedure = describe(call) end
    local summary = string.format("%s%s xid 0x%08x", texts and texts.name .. " " or "",
        header.isCall and "call" or "reply", header.xid)
    local root = tree:add(quorva, tvb(), "QUORVA, " .. summary)

    local m = newReading(tvb, size)
    m.seen = {}
    showExchange(root, pinfo, header, call, exchange, texts)
    if readRoot(m, root, envelope) then
        local seen = m.seen
        m.seen = nil
        local failure = not header.isCall and failureOf(seen)
        if failure then
            summary = summary .. " " .. failure
            procedure = {"", "void", "void"}
        end
        readBody(m, root, header, procedure)
    end
    if m.refused then summary = summary .. " (refused)" end
    pinfo.cols.protocol = "QUORVA"
    if isFirst then pinfo.cols.info = summary else pinfo.cols.info:append("; " .. summary) end
end

-- ---- UDP ------------------------------------------------------------------------------------------------------------

-- True for a call of a known program, and for a reply whose call was seen.
local function isOurs(header, pinfo, transport)
    if not header then return false end
    if header.isCall then return programs[header.program] ~= nil end
    return exchangeOf(pinfo, header, transport) ~= nil
end

local function dissectDatagram(tvb, pinfo, tree)
    local header = headerOf(tvb, 0)
    if not isOurs(header, pinfo, "udp") then return false end
    dissectMessage(tvb, tvb:reported_len(), header, pinfo, tree, "udp", true)
    return true
end

-- ---- TCP: records of fragments, each after a mark with its length ---------------------------------------------------

-- The record at a place: its `fragments` {place, length}, its `size`, and `stop`, the place after it. If bytes are
-- missing, `missing` is their number, and unless the last mark is there, that and the size are infinite. `problem` says
-- why this is not a record.
local function recordAt(tvb, at)
    local record, here, length = {fragments = {}, size = 0}, at, tvb:len()
    repeat
        if length - here < 4 then
            record.missing, record.size = math.huge, math.huge
            return record
        end
        local mark = tvb(here, 4):uint()
        local size, isLast = mark % 0x80000000, mark >= 0x80000000
        record.size = record.size + size
        if record.size > mostRecord then
            record.problem = string.format("a record of %s bytes or more", grouped(record.size))
        elseif #record.fragments == mostFragments then
            record.problem = string.format("a record of more than %s fragments", grouped(mostFragments))
        end
        if record.problem then return record end
        local missing = here + 4 + size - length
        table.insert(record.fragments, {here + 4, math.min(size, length - here - 4)})
        if missing > 0 then
            record.missing = missing
            if not isLast then record.missing, record.size = math.huge, math.huge end
            return record
        end
        here = here + 4 + size
    until isLast
    record.stop = here
    return record
end

-- The bytes of the record as far as they are there.
local function bytesOf(tvb, record)
    if #record.fragments == 1 then return tvb(record.fragments[1][1], record.fragments[1][2]):tvb() end
    local bytes = ByteArray.new()
    for _, fragment in ipairs(record.fragments) do
        if fragment[2] > 0 then bytes:append(tvb(fragment[1], fragment[2]):bytes()) end
    end
    return bytes:len() > 0 and bytes:tvb("Record") or nil
end

-- Asks Wireshark for further bytes after those from `at` on. If their number is not known, any segment will do: asking
-- for the next few bytes of a segment that has more of them loses the record when Wireshark visits the frame again.
local function askFor(bytes, pinfo, at)
    pinfo.desegment_offset = at
    pinfo.desegment_len = bytes < math.huge and bytes or DESEGMENT_ONE_MORE_SEGMENT
end

-- Reads the records of a segment, or asks for the segments that follow.
local function dissectSegment(tvb, pinfo, tree)
    local at, length = 0, tvb:len()
    while at < length do
        local record = recordAt(tvb, at)
        local first = record.fragments[1]
        local isBeginning = first and first[2] >= callHeader
        local isPossible = not record.problem and (not isBeginning or headerOf(tvb, first[1]))
        if isPossible and record.missing and pinfo.can_desegment > 0 then
            askFor(record.missing, pinfo, at)
            return length
        end
        local message = isPossible and bytesOf(tvb, record)
        local header = message and headerOf(message, 0)
        if not header then
            local item = tree:add(quorva, tvb(at), "QUORVA, " .. (record.problem or "not a record"))
            item:add(own.data, tvb(at))
            add(item, "not-a-record", record.problem or "no record of a call or a reply begins here")
            return length
        end
        dissectMessage(message, record.size, header, pinfo, tree, "tcp", at == 0)
        at = record.stop or length
    end
    return length
end

-- True if the bytes, which are too few for a header, may be the beginning of a record with a call. Many senders write
-- the mark by itself.
local function mayBeginCall(tvb)
    local length = tvb:len()
    if length >= 4 + callHeader then return false end
    local function unit(i) return length >= 4 * i + 4 and tvb(4 * i, 4):uint() or nil end
    local size, kind, protocol, program = unit(0), unit(2), unit(3), unit(4)
    if not size then return tvb(0, 1):uint() == 0x80 and (length == 1 or tvb(1, 1):uint() <= 1) end
    size = size - 0x80000000
    if size < callHeader or size > mostRecord or kind and kind ~= 0 or protocol and protocol ~= 2 then return false end
    if program then return programs[program] ~= nil end
    return size % 4 == 0  -- as of all messages that are not damaged
end

local function dissectStream(tvb, pinfo, tree)
    if pinfo.can_desegment > 0 and mayBeginCall(tvb) then
        askFor(math.huge, pinfo, 0)
        return true
    end
    if tvb:len() < 4 or not isOurs(headerOf(tvb, 4), pinfo, "tcp") then return false end
    pinfo.conversation = quorva
    dissectSegment(tvb, pinfo, tree)
    return true
end

quorva.dissector = dissectSegment  -- of the connections that dissectStream knows
quorva:register_heuristic("udp", dissectDatagram)
quorva:register_heuristic("tcp", dissectStream)
