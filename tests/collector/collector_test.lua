-- Runs the exporter collector against replies recorded by `lynd-sim run
-- --out`, with stubs of the exporter's metric() and of the ubus module,
-- and reads its output back as the Prometheus text exposition format.
-- Usage: lua5.1 collector_test.lua COLLECTOR.lua UBUS_CALLS.json
local cjson = require "cjson"

local collector_path, calls_path = arg[1], arg[2]
local failures = 0
local function check(ok, what)
  if not ok then
    failures = failures + 1
    io.stderr:write("FAIL: " .. what .. "\n")
  end
end

local function read_all(path)
  local f = assert(io.open(path, "rb"))
  local text = f:read("*a")
  f:close()
  return text
end

-- The last successful reply of each method, as the daemon gave it.
local replies = {}
for _, c in ipairs(cjson.decode(read_all(calls_path))) do
  if c.object == "lynd" and c.status == 0 and type(c.reply) == "table" then replies[c.method] = c.reply end
end
check(replies.status ~= nil, "the recording holds a status reply")
check(replies.paths ~= nil, "the recording holds a paths reply")

local closed = false
package.preload["ubus"] = function()
  return {
    connect = function()
      return {
        call = function(_, object, method) return object == "lynd" and replies[method] or nil end,
        close = function() closed = true end,
      }
    end,
  }
end

-- The exporter's own shape: a TYPE line per metric() call, then samples.
local out = {}
local function print_metric(name, labels, value)
  local parts = {}
  if labels then
    local keys = {}
    for k in pairs(labels) do keys[#keys + 1] = k end
    table.sort(keys)
    for _, k in ipairs(keys) do parts[#parts + 1] = k .. '="' .. tostring(labels[k]) .. '"' end
  end
  local label_text = #parts > 0 and ("{" .. table.concat(parts, ",") .. "}") or ""
  out[#out + 1] = string.format("%s%s %s", name, label_text, tostring(value))
end
function metric(name, mtype, labels, value)
  out[#out + 1] = "# TYPE " .. name .. " " .. mtype
  local outputter = function(l, v) print_metric(name, l, v) end
  if value then outputter(labels, value) end
  return outputter
end

local collector = dofile(collector_path)
check(type(collector) == "table" and type(collector.scrape) == "function", "the collector returns { scrape = f }")
collector.scrape()
check(closed, "the collector closes its bus connection")

-- Text exposition format: "# TYPE name type" once per name, before its
-- samples; samples "name{label=\"value\",...} number".
local types, samples = {}, {}
local name_re = "^[a-zA-Z_:][a-zA-Z0-9_:]*$"
for _, line in ipairs(out) do
  local tname, ttype = line:match("^# TYPE (%S+) (%S+)$")
  if tname then
    check(tname:match(name_re) ~= nil, "metric name " .. tname)
    check(ttype == "gauge" or ttype == "counter", "type of " .. tname)
    check(types[tname] == nil, "one TYPE line for " .. tname)
    types[tname] = ttype
  else
    local name, rest = line:match("^([a-zA-Z_:][a-zA-Z0-9_:]*)(.*)$")
    check(name ~= nil, "a sample line: " .. line)
    name = name or ""
    local labels, value = {}, rest
    if rest:sub(1, 1) == "{" then
      local body, tail = rest:match("^{(.-)}(.*)$")
      check(body ~= nil, "labels closed: " .. line)
      body, value = body or "", tail or ""
      for pair in (body .. ","):gmatch("([^,]*),") do
        local k, v = pair:match('^([a-zA-Z_][a-zA-Z0-9_]*)="([^"\\\n]*)"$')
        check(k ~= nil, "label pair " .. pair .. " in " .. line)
        if k then labels[k] = v end
      end
    end
    local num = value:match("^ (%-?[0-9.eE+]+)$")
    check(num ~= nil and tonumber(num) ~= nil, "a number after the name: " .. line)
    check(types[name] ~= nil, "TYPE before the samples of " .. name)
    samples[#samples + 1] = { name = name, labels = labels, value = tonumber(num or "") }
  end
end

local function find(name, label, value)
  for _, s in ipairs(samples) do
    if s.name == name and (label == nil or s.labels[label] == value) then return s end
  end
  return nil
end

-- Every documented name is there, and the figures are the daemon's.
for _, name in ipairs({ "lynd_up", "lynd_path_state", "lynd_path_rate_mbps", "lynd_path_utilisation_percent",
  "lynd_path_quota", "lynd_clients", "lynd_moves_total", "lynd_moves_held_total", "lynd_evacuations_total",
  "lynd_emergency_choices_total", "lynd_path_state_changes_total", "lynd_bus_reconnects_total",
  "lynd_bridge_call_failures_total", "lynd_tool_run_failures_total", "lynd_events_total",
  "lynd_malformed_datagrams_total" }) do
  check(types[name] ~= nil, "metric " .. name .. " published")
end
check(find("lynd_up") and find("lynd_up").value == 1, "lynd_up is 1")
for _, p in ipairs(replies.paths and replies.paths.paths or {}) do
  local s = find("lynd_clients", "path", p.name)
  check(s ~= nil and s.value == p.clients, "lynd_clients of " .. p.name)
  s = find("lynd_path_state", "path", p.name)
  check(s ~= nil and s.labels.state == p.state, "lynd_path_state of " .. p.name)
  s = find("lynd_path_rate_mbps", "path", p.name)
  check(s ~= nil and s.value == p.rate, "lynd_path_rate_mbps of " .. p.name)
end
check(replies.counters ~= nil, "the recording holds a counters reply")
local c = replies.counters or {}
for reason, n in pairs(c.moves_by_reason or {}) do
  local s = find("lynd_moves_total", "reason", reason)
  check(s ~= nil and s.value == n, "lynd_moves_total of " .. reason)
end
local held = find("lynd_moves_held_total")
check(held ~= nil and held.value == c.moves_held, "lynd_moves_held_total")
local nl = find("lynd_events_total", "type", "bridge")
check(nl ~= nil and c.events ~= nil and nl.value == c.events.bridge, "lynd_events_total of bridge")

-- Without the daemon the scrape says so and nothing else.
replies = {}
out = {}
collector.scrape()
check(#out == 2 and out[2] == "lynd_up 0", "lynd_up 0 when lynd does not answer")

if failures > 0 then
  io.stderr:write(failures .. " check(s) failed\n")
  os.exit(1)
end
print(#samples .. " samples, all in the exposition format")
