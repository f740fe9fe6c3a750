'use strict';
'require baseclass';
'require lynd.common as lynd';

// The daemon keeps no history it could send, so the picture is drawn from
// the samples this browser tab polled; they survive a tab switch in
// sessionStorage and are dropped after the window.
var WINDOW_S = 1800,
    KEY = 'lynd.samples',
    W = 900, LEFT = 90, RIGHT = 70, TOP = 22, LANE = 46, GAP = 12;

function esc(s) {
	return String(s).replace(/[&<>"']/g, function(c) { return '&#' + c.charCodeAt(0) + ';' });
}

function loadSamples() {
	try {
		var s = JSON.parse(sessionStorage.getItem(KEY));
		return Array.isArray(s) ? s : [];
	}
	catch (e) {
		return [];
	}
}

function saveSamples(samples) {
	try { sessionStorage.setItem(KEY, JSON.stringify(samples)) } catch (e) {}
}

function x(t, now) {
	return LEFT + (W - LEFT - RIGHT) * (1 - Math.min(now - t, WINDOW_S) / WINDOW_S);
}

// Runs of samples with no gap longer than three poll periods.
function runs(samples, name) {
	var out = [], cur = null, last = null;
	samples.forEach(function(s) {
		var v = s.p[name];
		if (!v || (last != null && s.t - last > 3 * lynd.interval)) {
			if (cur && cur.length) out.push(cur);
			cur = null;
		}
		if (v) {
			cur = cur || [];
			cur.push({ t: s.t, rate: v[0], state: v[1] });
		}
		last = s.t;
	});
	if (cur && cur.length) out.push(cur);
	return out;
}

function lane(samples, name, top, now) {
	var svg = '', max = 1;
	samples.forEach(function(s) { if (s.p[name]) max = Math.max(max, s.p[name][0]) });
	svg += '<rect x="%d" y="%d" width="%d" height="%d" fill="none" stroke="#9e9e9e"/>'
		.format(LEFT, top, W - LEFT - RIGHT, LANE);
	svg += '<text x="%d" y="%d" font-weight="bold" font-size="12" fill="#212121">%s</text>'
		.format(6, top + LANE / 2 + 4, esc(name));
	svg += '<text x="%d" y="%d" font-size="10" fill="#1565c0">%s</text>'
		.format(W - RIGHT + 4, top + 10, esc(_('%d Mbit/s').format(max)));
	runs(samples, name).forEach(function(run) {
		var pts = [];
		run.forEach(function(p, i) {
			var x0 = x(p.t, now), x1 = i + 1 < run.length ? x(run[i + 1].t, now) : x0 + 2;
			svg += '<rect x="%.1f" y="%d" width="%.1f" height="%d" fill="%s" fill-opacity="0.35"><title>%s</title></rect>'
				.format(x0, top, Math.max(x1 - x0, 1), LANE, lynd.stateColour(p.state), esc(p.state));
			pts.push('%.1f,%.1f'.format(x0, top + LANE - 2 - (LANE - 6) * p.rate / max));
		});
		svg += '<polyline points="%s" fill="none" stroke="#1565c0" stroke-width="1.4"/>'.format(pts.join(' '));
	});
	return svg;
}

function axis(bottom, now) {
	var svg = '';
	for (var m = 30; m >= 0; m -= 5) {
		var px = x(now - m * 60, now);
		svg += '<line x1="%.1f" y1="%d" x2="%.1f" y2="%d" stroke="#e0e0e0"/>'.format(px, TOP - 4, px, bottom);
		svg += '<text x="%.1f" y="%d" font-size="10" fill="#555" text-anchor="middle">%s</text>'
			.format(px, TOP - 8, esc(m ? _('-%d min').format(m) : _('now')));
	}
	return svg;
}

function legend(y) {
	var svg = '', px = LEFT;
	[ 'UNLINK', 'NORMAL', 'WEAKLINK', 'WEAKLINK+ABNORMAL', 'ABNORMAL' ].forEach(function(s) {
		svg += '<rect x="%d" y="%d" width="12" height="12" fill="%s" fill-opacity="0.5"/>'.format(px, y, lynd.stateColour(s));
		svg += '<text x="%d" y="%d" font-size="11" fill="#424242">%s</text>'.format(px + 16, y + 10, s);
		px += 30 + 7 * s.length;
	});
	svg += '<line x1="%d" y1="%d" x2="%d" y2="%d" stroke="#1565c0" stroke-width="1.4"/>'.format(px, y + 6, px + 20, y + 6);
	svg += '<text x="%d" y="%d" font-size="11" fill="#424242">%s</text>'.format(px + 24, y + 10, esc(_('rate')));
	return svg;
}

return baseclass.extend({
	// Adds one poll's paths to the kept samples; returns them.
	record: function(paths) {
		var now = Date.now() / 1000, sample = { t: now, p: {} },
		    samples = loadSamples().filter(function(s) { return s && s.p && now - s.t <= WINDOW_S });
		paths.forEach(function(p) { sample.p[p.name] = [ +p.rate || 0, p.state ] });
		samples.push(sample);
		saveSamples(samples);
		return samples;
	},

	render: function(samples) {
		var now = Date.now() / 1000, names = [];
		samples.forEach(function(s) {
			for (var n in s.p)
				if (names.indexOf(n) < 0)
					names.push(n);
		});
		var bottom = TOP + names.length * (LANE + GAP), svg = axis(bottom, now);
		names.forEach(function(n, i) { svg += lane(samples, n, TOP + i * (LANE + GAP), now) });
		svg += legend(bottom + 4);
		var box = E('div', { 'class': 'lynd-chart', 'style': 'max-width:100%;overflow-x:auto' });
		box.innerHTML = '<svg xmlns="http://www.w3.org/2000/svg" width="%d" height="%d" viewBox="0 0 %d %d" font-family="sans-serif" role="img">%s</svg>'
			.format(W, bottom + 24, W, bottom + 24, svg);
		return box;
	}
});
