-- ---- Management messages that have no decoder yet ----

-- A message is a list of items, as it goes over the air: most significant bit first, and no byte
-- begins where an item happens to begin. What is read from them is kept by name, for the items that
-- depend on it.
do
    -- ---- Items ----

    -- A number. Options: codes, hexadecimal, signed, unit, and step and base of a scale.
    local function number(width, name, label, options)
        return {kind = "number", width = width, name = name, label = label, options = options or {}}
    end
    local function flag(name, label)
        return number(1, name, label)
    end
    local function reserved(width)
        return {kind = "reserved", width = width}
    end
    -- Six bytes, wherever they begin.
    local function address(name, label)
        return {kind = "address", width = 48, name = name, label = label}
    end
    -- All bytes that are left.
    local function rest(name, label)
        return {kind = "rest", name = name, label = label}
    end
    -- Items below a line of their own, as often as count says: a name or a function.
    local function each(count, name, label, items)
        return {kind = "each", count = count, name = name, label = label, items = items}
    end
    local function group(name, label, items)
        return {kind = "group", name = name, label = label, items = items}
    end
    -- Items in the next bytes, as many as an item before says.
    local function within(length, items)
        return {kind = "within", length = length, items = items}
    end
    local function when(condition, items)
        return {kind = "when", condition = condition, items = items}
    end
    -- What is left from the next byte on: values with tag and length. A row is the item for a
    -- value's bytes; of the tags that have none nothing is shown when others know them.
    local function tagged(rows, known_to_others)
        return {kind = "tagged", rows = rows, name = "other_tag", label = "Value of another tag",
                known_to_others = known_to_others}
    end

    -- Conditions, on what was read.
    local function always()
        return true
    end
    local function is_set(name)
        return function(values)
            return values[name] ~= 0
        end
    end
    local function is(name, wanted)
        return function(values)
            return values[name] == wanted
        end
    end
    local function has_bit(name, bit)
        return function(values)
            return bits_of(values[name], bit, 1) == 1
        end
    end
    local function both(first, second)
        return function(values)
            return first(values) and second(values)
        end
    end

    -- ---- What many messages have ----

    local CINR = {signed = true, step = 0.5, base = 0, unit = "dB"}
    local RSSI = {step = 0.25, base = -103.75, unit = "dBm"}
    local SAMPLES = {signed = true, unit = "samples"}
    local RTD = {unit = "samples"}
    local FRAMES = {unit = "frames"}
    local HEXADECIMAL = {hexadecimal = true}

    local CINR_BIT, RSSI_BIT, DELAY_BIT, RTD_BIT = 0, 1, 2, 3

    -- What was measured of a station, as the report metric says.
    local function measured(...)
        local items = {
            [CINR_BIT] = number(8, "cinr", "CINR", CINR),
            [RSSI_BIT] = number(8, "rssi", "RSSI", RSSI),
            [DELAY_BIT] = number(8, "delay", "Relative delay", SAMPLES),
            [RTD_BIT] = number(8, "rtd", "Round trip delay", RTD),
        }
        local chosen = {}
        for _, bit in ipairs({...}) do
            chosen[#chosen + 1] = when(has_bit("metric", bit), {items[bit]})
        end
        return when(always, chosen)
    end

    local metric = number(8, "metric", "Report metric", HEXADECIMAL)
    local n_index = number(8, "n_index", "Stations by index")
    local change_count = when(is_set("n_index"), {number(8, "change_count", "Change count of NBR-ADV")})
    local index = number(8, "index", "Index in NBR-ADV")
    local n_full = number(8, "n_full", "Stations by BS ID")
    local bsid = address("bsid", "BS ID")
    local preamble = number(8, "preamble", "Preamble index")

    local CMAC = group("cmac_tuple", "CMAC tuple", {
        reserved(4),
        number(4, "key_sequence", "AK sequence number"),
        number(32, "packet_number", "Packet number"),
        rest("value", "Value"),
    })
    local HMAC = group("hmac_tuple", "HMAC tuple", {
        reserved(4),
        number(4, "key_sequence", "AK sequence number"),
        rest("digest", "Digest"),
    })
    -- At the end of most messages.
    local function signed(rows)
        rows[141], rows[149] = CMAC, HMAC
        return tagged(rows)
    end

    local PAGING = group("paging", "Paging information", {
        number(16, "cycle", "Paging cycle", FRAMES),
        number(8, "offset", "Paging offset", FRAMES),
        number(16, "group", "Paging group"),
    })
    local CONTROLLER = address("paging_controller", "Paging controller")
    local HASH_THRESHOLD = number(16, "mac_hash_skip_threshold", "MAC hash skip threshold")

    local CLASS_TYPES = {[0] = "type I", [1] = "type II", [2] = "type III"}
    local CLASS_DIRECTIONS = {
        [0] = "unspecified", [1] = "downlink", [2] = "uplink", [3] = "management",
    }
    local class_type = number(2, "type", "Class type", {codes = CLASS_TYPES})
    local class_direction = number(2, "direction", "Direction", {codes = CLASS_DIRECTIONS})
    local initial_window = number(8, "initial_window", "Initial sleep window", FRAMES)
    local listening_window = number(8, "listening_window", "Listening window", FRAMES)
    local window_base = number(10, "window_base", "Final sleep window base", FRAMES)
    local window_exponent = number(3, "window_exponent", "Final sleep window exponent")
    local start_frame = number(6, "start_frame", "Start frame (low bits)")
    local cids = each("n_cids", "connection", "Connection", {number(16, "cid", "CID", HEXADECIMAL)})

    local SCAN_TYPES = {
        [0] = "without association", [1] = "association level 0", [2] = "association level 1",
        [3] = "association level 2",
    }
    local scan_type = number(3, "type", "Scanning type", {codes = SCAN_TYPES})
    -- Of an association with coordination.
    local function is_coordinated(values)
        return values.type >= 2 and values.type <= 3
    end
    local rendezvous = when(is_coordinated, {
        number(8, "rendezvous_time", "Rendezvous time", FRAMES),
        number(8, "cdma_code", "CDMA code"),
        number(8, "opportunity", "Transmission opportunity offset"),
    })

    local SERVICE_LEVELS = {[0] = "none", [1] = "some", [2] = "all", [3] = "unknown"}

    local TRIGGER = group("trigger", "Trigger", {
        tagged({
            [1] = group("kind", "Kind", {
                number(2, "metric_kind", "Metric",
                       {codes = {[0] = "CINR", [1] = "RSSI", [2] = "round trip delay"}}),
                number(3, "function", "Function"),
                number(3, "action", "Action",
                       {codes = {[1] = "MOB_SCN-REP", [2] = "MOB_MSHO-REQ", [3] = "MOB_SCN-REQ"}}),
            }),
            [2] = number(8, "value", "Value"),
            [3] = number(8, "averaging", "Averaging", FRAMES),
        }),
    })

    -- ---- The messages ----

    local SLP_REQ = {
        number(8, "n_classes", "Number of classes"),
        each("n_classes", "class", "Power saving class", {
            flag("definition", "Definition"),
            number(1, "operation", "Operation", {codes = {[0] = "deactivate", [1] = "activate"}}),
            number(6, "id", "Class ID"),
            when(is_set("operation"), {start_frame, reserved(2)}),
            when(is_set("definition"), {
                class_type,
                class_direction,
                flag("wakening", "Traffic triggered wakening"),
                reserved(3),
                initial_window,
                listening_window,
                window_base,
                window_exponent,
                number(3, "n_cids", "Number of CIDs"),
                cids,
            }),
        }),
        signed({}),
    }

    local SLP_RSP = {
        number(8, "n_classes", "Number of classes"),
        each("n_classes", "class", "Power saving class", {
            number(7, "length", "Length of data"),
            flag("approved", "Sleep approved"),
            flag("definition", "Definition"),
            number(1, "operation", "Operation", {codes = {[0] = "deactivate", [1] = "activate"}}),
            number(6, "id", "Class ID"),
            when(both(is_set("approved"), is_set("operation")), {
                start_frame,
                flag("stop_cqi", "Stop CQI"),
                reserved(1),
            }),
            when(both(is_set("approved"), is_set("definition")), {
                class_type,
                class_direction,
                initial_window,
                listening_window,
                window_base,
                window_exponent,
                flag("trf_ind_required", "TRF-IND required"),
                flag("wakening", "Traffic triggered wakening"),
                reserved(1),
                when(is_set("trf_ind_required"), {number(10, "slpid", "SLPID"), reserved(2)}),
                number(4, "n_cids", "Number of CIDs"),
                cids,
            }),
            when(is("approved", 0), {number(8, "req_duration", "REQ duration", FRAMES)}),
        }),
        signed({}),
    }

    local function set_groups(values)
        local count = 0
        for bit = 0, 31 do
            count = count + bits_of(values.group_map, bit, 1)
        end
        return count
    end

    local TRF_IND = {
        number(1, "format", "Format", {codes = {[0] = "bit maps", [1] = "list"}}),
        when(is("format", 0), {
            reserved(7),
            number(32, "group_map", "SLPID group map", HEXADECIMAL),
            each(set_groups, "group", "Group", {
                number(32, "traffic_map", "Traffic map", HEXADECIMAL),
            }),
        }),
        when(is("format", 1), {
            number(7, "n_slpids", "Number of SLPIDs"),
            each("n_slpids", "station", "Station", {number(10, "slpid", "SLPID")}),
        }),
        tagged({[1] = rest("slpid_update", "SLPID update")}),
    }

    local SKIP_OPERATOR, SKIP_BSID, SKIP_OPTIMISATION, SKIP_QOS = 0, 1, 2, 3
    local function not_skipped(bit)
        return function(values)
            return bits_of(values.skip_map, bit, 1) == 0
        end
    end

    local NBR_ADV = {
        number(8, "skip_map", "Skip map", HEXADECIMAL),
        when(not_skipped(SKIP_OPERATOR), {number(24, "operator", "Operator ID", HEXADECIMAL)}),
        number(8, "change_count", "Change count"),
        number(4, "fragment", "Fragment index"),
        number(4, "fragments", "Total fragments"),
        number(8, "n_neighbours", "Number of neighbours"),
        each("n_neighbours", "neighbour", "Neighbour", {
            number(8, "length", "Length"),
            within("length", {
                group("phy_profile", "PHY profile", {
                    flag("co_located", "Co-located FA"),
                    flag("fa_configuration", "FA configuration"),
                    number(2, "synchronised", "Time and frequency synchronisation"),
                    flag("eirp_present", "EIRP present"),
                    flag("reference", "DCD and UCD reference"),
                    flag("fa_index_present", "FA index present"),
                    flag("trigger_reference", "Trigger reference"),
                }),
                when(is_set("fa_index_present"), {number(8, "fa_index", "FA index")}),
                when(is_set("eirp_present"), {
                    number(8, "eirp", "EIRP", {signed = true, unit = "dBm"}),
                }),
                when(not_skipped(SKIP_BSID), {
                    number(24, "bsid", "BS ID (low half)", HEXADECIMAL),
                }),
                preamble,
                when(not_skipped(SKIP_OPTIMISATION), {
                    number(8, "ho_optimisation", "HO process optimisation", HEXADECIMAL),
                }),
                when(not_skipped(SKIP_QOS), {
                    number(8, "services", "Scheduling services", HEXADECIMAL),
                }),
                number(4, "dcd_count", "DCD change count (low bits)"),
                number(4, "ucd_count", "UCD change count (low bits)"),
                tagged({
                    [1] = group("dcd", "DCD settings", {
                        tagged({
                            [2] = number(16, "bs_eirp", "BS EIRP", {signed = true, unit = "dBm"}),
                            [9] = number(16, "eirxp", "EIRxP", {signed = true, unit = "dBm"}),
                            [12] = number(32, "frequency", "Centre frequency", {unit = "kHz"}),
                            [13] = address("full_bsid", "BS ID"),
                            [54] = TRIGGER,
                            [148] = number(8, "mac_version", "MAC version"),
                        }),
                    }),
                    [2] = group("ucd", "UCD settings", {
                        tagged({[5] = number(32, "frequency", "Frequency", {unit = "kHz"})}),
                    }),
                    [3] = number(16, "phy_mode", "PHY mode ID", HEXADECIMAL),
                    [4] = TRIGGER,
                }),
            }),
        }),
        tagged({}),
    }

    local SCN_REQ = {
        number(8, "duration", "Scan duration", FRAMES),
        number(8, "interleaving", "Interleaving interval", FRAMES),
        number(8, "iterations", "Iterations"),
        n_index,
        change_count,
        each("n_index", "indexed", "Station", {index, scan_type}),
        n_full,
        each("n_full", "full", "Station", {bsid, scan_type}),
        signed({}),
    }

    local SCN_RSP = {
        number(8, "duration", "Scan duration", FRAMES),
        number(2, "report_mode", "Report mode", {
            codes = {[0] = "none", [1] = "periodic", [2] = "event", [3] = "one time"},
        }),
        reserved(6),
        number(8, "report_period", "Report period", FRAMES),
        metric,
        when(is_set("duration"), {
            number(4, "start", "Start", FRAMES),
            reserved(1),
            number(8, "interleaving", "Interleaving interval", FRAMES),
            number(8, "iterations", "Iterations"),
            reserved(3),
            n_index,
            change_count,
            each("n_index", "indexed", "Station", {index, scan_type, rendezvous}),
            n_full,
            each("n_full", "full", "Station", {bsid, scan_type, rendezvous}),
        }),
        signed({}),
    }

    local SCN_REP = {
        number(1, "mode", "Report mode", {codes = {[0] = "event", [1] = "periodic"}}),
        flag("short_bsids", "Short BS IDs"),
        number(3, "n_current", "Serving stations"),
        reserved(3),
        metric,
        each("n_current", "current", "Serving station", {
            number(4, "temporary_id", "Temporary ID"),
            reserved(4),
            measured(CINR_BIT, RSSI_BIT, DELAY_BIT, RTD_BIT),
        }),
        n_index,
        change_count,
        each("n_index", "indexed", "Station", {index, measured(CINR_BIT, RSSI_BIT, DELAY_BIT)}),
        n_full,
        each("n_full", "full", "Station", {
            when(is_set("short_bsids"), {
                number(24, "short_bsid", "BS ID (low half)", HEXADECIMAL),
            }),
            when(is("short_bsids", 0), {bsid}),
            measured(CINR_BIT, RSSI_BIT, DELAY_BIT),
        }),
        signed({}),
    }

    local arrival = when(always, {
        flag("arrival_indicator", "Arrival difference indicator"),
        when(is_set("arrival_indicator"), {number(4, "arrival", "Arrival difference")}),
    })
    local MSHO_REQ = {
        metric,
        n_index,
        change_count,
        each("n_index", "indexed", "Station", {
            index, preamble, measured(CINR_BIT, RSSI_BIT, DELAY_BIT),
            arrival,
        }),
        n_full,
        each("n_full", "full", "Station", {
            bsid, preamble, measured(CINR_BIT, RSSI_BIT, DELAY_BIT),
            arrival,
        }),
        number(4, "n_current", "Serving stations"),
        each("n_current", "current", "Serving station", {
            number(4, "temporary_id", "Temporary ID"),
            measured(CINR_BIT, RSSI_BIT, DELAY_BIT, RTD_BIT),
        }),
        signed({}),
    }

    local HO_MODES = {
        [0] = "handover", [1] = "MDHO or FBSS", [2] = "MDHO or FBSS", [3] = "MDHO or FBSS",
        [4] = "MDHO or FBSS", [5] = "MDHO or FBSS", [6] = "request rejected",
    }
    local ho_mode = number(3, "mode", "Mode", {codes = HO_MODES})
    local recommendation = when(is("mode", 0), {
        number(1, "operation", "Operation mode", {codes = {[0] = "recommended", [1] = "mandatory"}}),
        flag("resource_retain", "Resource retain"),
        reserved(6),
        number(8, "n_recommended", "Recommended stations"),
        each("n_recommended", "recommended", "Recommended station", {
            bsid,
            preamble,
            number(8, "service_level", "Service level prediction", {codes = SERVICE_LEVELS}),
            number(8, "ho_optimisation", "HO process optimisation", HEXADECIMAL),
            flag("network_assisted", "Network assisted"),
            flag("ho_id_included", "HO ID included"),
            flag("policy_included", "Authorisation policy included"),
            reserved(5),
            when(is_set("ho_id_included"), {number(8, "ho_id", "HO ID")}),
            when(is_set("policy_included"), {
                number(8, "policy", "Authorisation policy", HEXADECIMAL),
            }),
        }),
        number(8, "action_time", "Action time", FRAMES),
    })
    local BSHO_REQ = {
        flag("network_assisted", "Network assisted"), ho_mode, reserved(4), recommendation, signed({}),
    }
    local BSHO_RSP = {ho_mode, reserved(5), recommendation, signed({})}

    local HO_IND = {
        reserved(6),
        number(2, "mode", "Mode", {codes = {[0] = "handover"}}),
        number(2, "type", "Type", {
            codes = {[0] = "leave the serving BS", [1] = "cancel", [2] = "reject"},
        }),
        number(2, "ranging", "Ranging parameters", {
            codes = {[0] = "none", [1] = "invalid", [2] = "valid"},
        }),
        reserved(4),
        when(is("type", 0), {address("target_bsid", "Target BS ID")}),
        preamble,
        signed({}),
    }

    local PAG_ADV = {
        number(16, "n_groups", "Paging groups"),
        each("n_groups", "paging_group", "Paging group", {number(16, "group", "Group")}),
        number(8, "n_macs", "Stations"),
        each("n_macs", "station", "Station", {
            number(24, "mac_hash", "MAC hash", HEXADECIMAL),
            number(2, "action", "Action", {
                codes = {[0] = "none", [1] = "location update", [2] = "enter the network"},
            }),
            reserved(6),
        }),
        tagged({}),
    }

    local dereg_rows = {
        [1] = PAGING,
        [2] = number(8, "req_duration", "REQ duration", FRAMES),
        [3] = CONTROLLER,
        [4] = group("retain", "Idle mode retain information", {
            reserved(3),
            flag("full", "Full state"),
            flag("address", "Address"),
            flag("reg", "REG"),
            flag("pkm", "PKM"),
            flag("sbc", "SBC"),
        }),
        [5] = HASH_THRESHOLD,
        [52] = number(16, "cycle_request", "Paging cycle request", FRAMES),
    }
    local DREG_CMD = {
        number(8, "action", "Action", {codes = {
            [0] = "leave and try another BS",
            [1] = "listen only",
            [2] = "basic and primary connections only",
            [3] = "normal operation",
            [4] = "end normal operation",
            [5] = "start idle mode",
            [6] = "ask again after the REQ duration",
            [7] = "do not ask again",
        }}),
        signed(dereg_rows),
    }
    local DREG_REQ = {
        number(8, "action", "Action", {codes = {
            [0] = "leave BS and network",
            [1] = "start idle mode",
            [2] = "accept idle mode",
            [3] = "reject idle mode",
        }}),
        signed(dereg_rows),
    }

    -- Only what its own decoder shows in hexadecimal or without its sign.
    local RNG_RSP = {
        reserved(8),
        tagged({
            [1] = number(32, "timing", "Timing adjustment", SAMPLES),
            [2] = number(8, "power", "Power adjustment",
                         {signed = true, step = 0.25, base = 0, unit = "dB"}),
            [25] = CONTROLLER,
            [26] = number(16, "next_ranging", "Next periodic ranging (frame)"),
            [28] = HASH_THRESHOLD,
            [141] = CMAC,
        }, true),
    }

    local MANAGEMENT = {
        {code = 5, name = "rng_rsp", title = "RNG-RSP", items = RNG_RSP},
        {code = 29, name = "dreg_cmd", title = "DREG-CMD", items = DREG_CMD},
        {code = 49, name = "dreg_req", title = "DREG-REQ", items = DREG_REQ},
        {code = 50, name = "mob_slp_req", title = "MOB_SLP-REQ", items = SLP_REQ},
        {code = 51, name = "mob_slp_rsp", title = "MOB_SLP-RSP", items = SLP_RSP},
        {code = 52, name = "mob_trf_ind", title = "MOB_TRF-IND", items = TRF_IND},
        {code = 53, name = "mob_nbr_adv", title = "MOB_NBR-ADV", items = NBR_ADV},
        {code = 54, name = "mob_scn_req", title = "MOB_SCN-REQ", items = SCN_REQ},
        {code = 55, name = "mob_scn_rsp", title = "MOB_SCN-RSP", items = SCN_RSP},
        {code = 56, name = "mob_bsho_req", title = "MOB_BSHO-REQ", items = BSHO_REQ},
        {code = 57, name = "mob_msho_req", title = "MOB_MSHO-REQ", items = MSHO_REQ},
        {code = 58, name = "mob_bsho_rsp", title = "MOB_BSHO-RSP", items = BSHO_RSP},
        {code = 59, name = "mob_ho_ind", title = "MOB_HO-IND", items = HO_IND},
        {code = 60, name = "mob_scn_rep", title = "MOB_SCN-REP", items = SCN_REP},
        {code = 61, name = "mob_pag_adv", title = "MOB_PAG-ADV", items = PAG_ADV},
    }

    -- ---- Fields ----

    local UNSIGNED = {ftypes.UINT8, ftypes.UINT16, ftypes.UINT24, ftypes.UINT32}
    local SIGNED = {ftypes.INT8, ftypes.INT16, ftypes.INT24, ftypes.INT32}

    local function field_of_item(item, name)
        if item.kind ~= "number" then
            return ProtoField.new(item.label, name, item.kind == "address" and ftypes.ETHER or
                                      item.items and ftypes.NONE or ftypes.BYTES)
        end
        local options = item.options
        if options.step then
            return ProtoField.new(item.label, name, ftypes.DOUBLE)
        end
        local bytes = math.ceil(item.width / 8)
        return ProtoField.new(item.label, name, (options.signed and SIGNED or UNSIGNED)[bytes],
                              options.codes, options.hexadecimal and base.HEX or base.DEC)
    end

    -- The items with a field of their own for every place where they can stand; where the same name
    -- stands twice, one of them comes.
    local nodes_of_items

    local function node_of(item, path, fields)
        local node = {item = item}
        local inner = path
        if item.name then
            local name = path .. "." .. item.name
            inner = (item.kind == "group" or item.kind == "each") and name or path
            fields[name] = fields[name] or field_of_item(item, name)
            node.field = fields[name]
        end
        if item.items then
            node.nodes = nodes_of_items(item.items, inner, fields)
        end
        if item.rows then
            node.rows = {}
            for tag, row in pairs(item.rows) do
                node.rows[tag] = node_of(row, path, fields)
            end
        end
        return node
    end

    function nodes_of_items(items, path, fields)
        local nodes = {}
        for i, item in ipairs(items) do
            nodes[i] = node_of(item, path, fields)
        end
        return nodes
    end

    -- ---- Reading ----

    local CUT = {} -- raised where the bytes end too early

    local function take(cursor, width)
        local bit = cursor.bit
        if bit + width > cursor.last then
            error(CUT, 0)
        end
        cursor.bit = bit + width
        return bit
    end

    -- The bytes that hold these bits.
    local function range_around(cursor, bit, width)
        local first = math.floor(bit / 8)
        return cursor.tvb:range(first, math.ceil((bit + width) / 8) - first)
    end

    local function read_number(cursor, width)
        local bit = take(cursor, width)
        local range = range_around(cursor, bit, width)
        return range:bitfield(bit % 8, width), range
    end

    local function align(cursor)
        cursor.bit = math.min(cursor.last, math.ceil(cursor.bit / 8) * 8)
    end

    -- Calls read with as much as is there; a value that breaks off ends there and nowhere else.
    local function read_inside(cursor, tree, bits, read)
        local last = math.min(cursor.last, cursor.bit + bits)
        local inner = {tvb = cursor.tvb, bit = cursor.bit, last = last}
        local done, problem = pcall(read, inner)
        if not done and problem ~= CUT then
            error(problem, 0)
        end
        if not done or cursor.bit + bits > last then
            tree:add_proto_expert_info(NOTES.missing)
        elseif last - inner.bit >= 8 then
            tree:add_proto_expert_info(NOTES.behind)
        end
        cursor.bit = last
    end

    local read_nodes

    local READ = {}

    function READ.number(cursor, tree, node, values)
        local item, options = node.item, node.item.options
        local value, range = read_number(cursor, item.width)
        values[item.name] = value
        if options.signed and value >= 2 ^ (item.width - 1) then
            value = value - 2 ^ item.width
        end
        if options.step then
            value = options.base + options.step * value
        end
        local shown = tree:add(node.field, range, value)
        if options.unit then
            shown:append_text(" " .. options.unit)
        end
    end

    function READ.reserved(cursor, _, node)
        take(cursor, node.item.width)
    end

    function READ.address(cursor, tree, node)
        local bit = take(cursor, node.item.width)
        local range = range_around(cursor, bit, node.item.width)
        local bytes = {}
        for i = 0, 5 do
            bytes[i + 1] = string.format("%02x", range:bitfield(bit % 8 + 8 * i, 8))
        end
        tree:add(node.field, range, Address.ether(table.concat(bytes, ":")))
    end

    function READ.rest(cursor, tree, node)
        align(cursor)
        if cursor.bit < cursor.last then
            tree:add(node.field, range_around(cursor, cursor.bit, cursor.last - cursor.bit))
        end
        cursor.bit = cursor.last
    end

    function READ.group(cursor, tree, node, values)
        local bit = cursor.bit
        if bit >= cursor.last then
            error(CUT, 0)
        end
        local item = tree:add(node.field, range_around(cursor, bit, cursor.last - bit))
        read_nodes(cursor, item, node.nodes, values)
        item:set_len(range_around(cursor, bit, cursor.bit - bit):len())
    end

    function READ.each(cursor, tree, node, values)
        local count = node.item.count
        count = type(count) == "function" and count(values) or values[count]
        for _ = 1, count do
            READ.group(cursor, tree, node, setmetatable({}, {__index = values}))
        end
    end

    READ["when"] = function(cursor, tree, node, values)
        if node.item.condition(values) then
            read_nodes(cursor, tree, node.nodes, values)
        end
    end

    function READ.within(cursor, tree, node, values)
        read_inside(cursor, tree, 8 * values[node.item.length], function(inner)
            read_nodes(inner, tree, node.nodes, values)
        end)
    end

    local function read_length(cursor)
        local length = read_number(cursor, 8)
        if length < 0x80 then
            return length
        end
        local width = length - 0x80
        if width < 1 or width > 4 then
            error(CUT, 0)
        end
        return (read_number(cursor, 8 * width))
    end

    local function read_other_tag(inner, tree, node, tag)
        if node.item.known_to_others then
            inner.bit = inner.last
            return
        end
        if inner.bit < inner.last then
            local range = range_around(inner, inner.bit, inner.last - inner.bit)
            tree:add(node.field, range):append_text(" (tag " .. decimal(tag) .. ")")
        end
        inner.bit = inner.last
    end

    function READ.tagged(cursor, tree, node, values)
        align(cursor)
        while cursor.bit < cursor.last do
            local tag = read_number(cursor, 8)
            local row = node.rows[tag]
            read_inside(cursor, tree, 8 * read_length(cursor), function(inner)
                if row then
                    READ[row.item.kind](inner, tree, row, values)
                else
                    read_other_tag(inner, tree, node, tag)
                end
            end)
        end
    end

    function read_nodes(cursor, tree, nodes, values)
        for _, node in ipairs(nodes) do
            READ[node.item.kind](cursor, tree, node, values)
        end
    end

    -- ---- The dissectors ----

    local table_of_messages = DissectorTable.get("wmx.mgmtmsg")

    for _, message in ipairs(MANAGEMENT) do
        local proto = Proto("qor020." .. message.name, message.title)
        local fields = {}
        local nodes = nodes_of_items(message.items, "qor020." .. message.name, fields)
        for _, made in pairs(fields) do
            proto.fields[#proto.fields + 1] = made
        end
        local stock = table_of_messages:get_dissector(message.code)

        function proto.dissector(tvb, pinfo, root)
            local tree = root:add(proto, tvb())
            local cursor = {tvb = tvb, bit = 0, last = 8 * tvb:len()}
            read_inside(cursor, tree, cursor.last, function(inner)
                read_nodes(inner, tree, nodes, {})
            end)
            if stock then
                call(stock, tvb, pinfo, root)
            end
            return tvb:len()
        end

        table_of_messages:add(message.code, proto)
    end
end
