'use strict';
'require baseclass';
'require rpc';
'require dom';

// Each call resolves to { data } or { error: a one-line reason }, so a view
// can say "lynd is not running" instead of failing when the object is gone.
function guarded(fn) {
	return function() {
		return fn.apply(this, arguments).then(function(reply) {
			if (!L.isObject(reply))
				return { error: _('lynd answered with ubus status %s').format(reply) };
			return { data: reply };
		}, function(err) {
			var code = +(String(err && err.message).match(/error (-\d+)/) || [])[1];
			if (code == -32000)
				return { error: _('lynd is not running: its ubus object "lynd" is missing.') };
			if (code == -32002)
				return { error: _('Access denied: this login may not ask lynd.') };
			return { error: _('lynd did not answer: %s').format(err && err.message || err) };
		});
	};
}

function lyndMethod(name, params) {
	return guarded(rpc.declare({ object: 'lynd', method: name, params: params }));
}

// The path states, coloured as the simulator's timeline draws them.
var stateColours = {
	'UNINITED': '#bdbdbd',
	'UNLINK': '#757575',
	'NORMAL': '#66bb6a',
	'WEAKLINK': '#ffca28',
	'WEAKLINK+ABNORMAL': '#ff7043',
	'ABNORMAL': '#e53935'
};

return baseclass.extend({
	status: lyndMethod('status'),
	paths: lyndMethod('paths'),
	clients: lyndMethod('clients'),
	explainClient: lyndMethod('explain', [ 'mac' ]),
	decisions: lyndMethod('decisions'),
	counters: lyndMethod('counters'),
	setShadow: lyndMethod('shadow', [ 'enable' ]),

	hostHints: rpc.declare({ object: 'luci-rpc', method: 'getHostHints', expect: { '': {} } }),

	// Poll period, seconds.
	interval: 5,

	stateColour: function(state) {
		return stateColours[state] || '#bdbdbd';
	},

	stateBadge: function(state, seconds) {
		var text = state || '?';
		if (seconds != null)
			text += ' · ' + '%t'.format(seconds);
		return E('span', {
			'class': 'lynd-badge',
			'style': 'display:inline-block;padding:1px 6px;border-radius:3px;white-space:nowrap;color:' +
				(state == 'UNLINK' || state == 'ABNORMAL' ? '#fff' : '#212121') + ';background:' + this.stateColour(state)
		}, text);
	},

	// One line in place of the page when a reply did not come; false then.
	showFailure: function(alertBox, body, replies) {
		var failed = replies.filter(function(r) { return r.error })[0];
		dom.content(alertBox, failed ? E('div', { 'class': 'alert-message warning' }, failed.error) : null);
		body.style.display = failed ? 'none' : '';
		return !failed;
	},

	table: function(titles) {
		return E('table', { 'class': 'table' }, [
			E('tr', { 'class': 'tr table-titles' }, titles.map(function(t) {
				return E('th', { 'class': 'th' }, t);
			}))
		]);
	},

	keyValueTable: function(rows) {
		return E('table', { 'class': 'table' }, rows.map(function(r) {
			return E('tr', { 'class': 'tr' }, [
				E('td', { 'class': 'td left', 'width': '33%' }, r[0]),
				E('td', { 'class': 'td left' }, r[1])
			]);
		}));
	},

	yesNo: function(v) {
		return v ? _('yes') : _('no');
	},

	orDash: function(v) {
		return (v == null || v === '') ? '—' : v;
	}
});
