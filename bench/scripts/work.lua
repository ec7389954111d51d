-- The work of ScriptBench.cpp.
-- The best of a few turns.
local function time(name, f)
  local best = math.huge
  for _ = 1, 5 do
    local t = os.clock()
    f()
    best = math.min(best, os.clock() - t)
  end
  print(string.format("%s %.4f", name, best))
end
local cards = {}
for i = 0, 99999 do cards[i + 1] = { Name = "Card " .. i, Amount = i % 100, Kind = "Kind " .. i % 10 } end
time("loop", function()
  local i, s, m = 0, 0, 1000 * 1000
  while i < 10000 * 1000 do i = i + 1; s = s + i; if s > m then s = s - s end end
end)
time("walk", function() local s = 0; for _, c in ipairs(cards) do s = s + c["Amount"] end end)
time("compare", function() local n = 0; for _, c in ipairs(cards) do if c["Kind"] == "Kind 3" then n = n + 1 end end end)
time("divide", function() local n = 0; for _, c in ipairs(cards) do n = n + c["Amount"] * 3 / 2 end end)
time("put", function() local n = 5; for _, c in ipairs(cards) do c["Amount"] = n end end)
time("chain", function()
  local t = {}
  for _, c in ipairs(cards) do t[#t + 1] = c["Name"] .. ": " .. c["Amount"] .. "\r\n" end
  local s = table.concat(t)
end)
time("text", function()
  local t = {}
  for i = 1, 1000 * 1000 do t[#t + 1] = "abc" end
  local s = table.concat(t)
end)
time("random", function() local x; for i = 1, 1000 * 1000 do x = math.random(6) end end)
-- What luac does, without starting it a thousand times.
local lines = {}
for i = 0, 98 do lines[#lines + 1] = "x = x + " .. i .. " * y\n" end
local source = table.concat(lines)
time("compile", function() for i = 1, 1000 do string.dump(load(source)) end end)
