-- lynd's numbers for prometheus-node-exporter-lua: path states and figures,
-- clients per path, and the daemon's counters since it started.
-- Installed as /usr/lib/lua/prometheus-collectors/lynd.lua; the exporter
-- provides the global metric(name, type, labels, value).
--
-- Metrics (names are stable; see the README's "Metrics" section):
--   lynd_up                                  1 when the daemon answered
--   lynd_path_state{path,type,state}         state code: 1 UNLINK, 2 NORMAL,
--                                            3 WEAKLINK, 4 WEAKLINK+ABNORMAL, 5 ABNORMAL
--   lynd_path_rate_mbps{path}
--   lynd_path_utilisation_percent{path}
--   lynd_path_quota{path}                    free airtime, 10000 = all
--   lynd_clients{path}
--   lynd_moves_total{reason}
--   lynd_moves_held_total                    held by the flap guard
--   lynd_evacuations_total
--   lynd_emergency_choices_total
--   lynd_path_state_changes_total{state}
--   lynd_bus_reconnects_total
--   lynd_bridge_call_failures_total
--   lynd_tool_run_failures_total
--   lynd_events_total{type}
--   lynd_malformed_datagrams_total

local ubus = require "ubus"

-- Seconds each bus call may take: a hung lynd must cost far less than a
-- Prometheus scrape's 10 s, or the whole node's scrape fails with it.
local call_timeout = 2

local state_codes = {
  UNINITED = 0, UNLINK = 1, NORMAL = 2, WEAKLINK = 3, ["WEAKLINK+ABNORMAL"] = 4, ABNORMAL = 5,
}

-- A label value as the text exposition format wants it: backslash, double
-- quote and newline escaped.
local escapes = { ["\\"] = "\\\\", ['"'] = '\\"', ["\n"] = "\\n" }
local function label(v)
  return (tostring(v):gsub('[\\"\n]', escapes))
end

-- String keys in sorted order, so the output reads the same on every scrape;
-- other keys are not label values.
local function sorted_keys(t)
  local keys = {}
  for k in pairs(t) do
    if type(k) == "string" then keys[#keys + 1] = k end
  end
  table.sort(keys)
  return keys
end

local function number(v)
  if type(v) == "number" and v == v then return v end
  return nil
end

local function by_key(name, mtype, key, t)
  if type(t) ~= "table" then return end
  local out = metric(name, mtype)
  for _, k in ipairs(sorted_keys(t)) do
    local v = number(t[k])
    if v then out({ [key] = label(k) }, v) end
  end
end

local function scrape_path(p, m)
  if type(p) ~= "table" or type(p.name) ~= "string" then return end
  local name = label(p.name)
  local code = type(p.state) == "string" and state_codes[p.state]
  if code then m.state({ path = name, type = label(type(p.type) == "string" and p.type or ""), state = p.state }, code) end
  if number(p.rate) then m.rate({ path = name }, p.rate) end
  if number(p.util) then m.util({ path = name }, p.util) end
  if number(p.quota) then m.quota({ path = name }, p.quota) end
  if number(p.clients) then m.clients({ path = name }, p.clients) end
end

local function scrape_paths(paths)
  local list = type(paths) == "table" and paths.paths or nil
  if type(list) ~= "table" then return end
  local m = {
    state = metric("lynd_path_state", "gauge"),
    rate = metric("lynd_path_rate_mbps", "gauge"),
    util = metric("lynd_path_utilisation_percent", "gauge"),
    quota = metric("lynd_path_quota", "gauge"),
    clients = metric("lynd_clients", "gauge"),
  }
  for _, p in ipairs(list) do scrape_path(p, m) end
end

local plain_counters = {
  { "moves_held", "lynd_moves_held_total" },
  { "evacuations", "lynd_evacuations_total" },
  { "emergency_choices", "lynd_emergency_choices_total" },
  { "bus_reconnects", "lynd_bus_reconnects_total" },
  { "bridge_call_failures", "lynd_bridge_call_failures_total" },
  { "tool_run_failures", "lynd_tool_run_failures_total" },
  { "malformed_datagrams", "lynd_malformed_datagrams_total" },
}

local function scrape_counters(c)
  if type(c) ~= "table" then return end
  by_key("lynd_moves_total", "counter", "reason", c.moves_by_reason)
  for _, pc in ipairs(plain_counters) do
    local v = number(c[pc[1]])
    if v then metric(pc[2], "counter", nil, v) end
  end
  by_key("lynd_path_state_changes_total", "counter", "state", c.state_changes)
  by_key("lynd_events_total", "counter", "type", c.events)
end

-- One call; nil for no answer, a failed call or an error of the binding.
local function call(conn, method)
  local ok, reply = pcall(conn.call, conn, "lynd", method, {})
  if ok and type(reply) == "table" then return reply end
  return nil
end

local function scrape()
  local ok, conn = pcall(ubus.connect, nil, call_timeout)
  if not ok or not conn then
    metric("lynd_up", "gauge", nil, 0)
    return
  end
  local status = call(conn, "status")
  metric("lynd_up", "gauge", nil, status and 1 or 0)
  if status then
    pcall(scrape_paths, call(conn, "paths"))
    pcall(scrape_counters, call(conn, "counters"))
  end
  pcall(conn.close, conn)
end

return { scrape = scrape }
