'use strict';
'require view';
'require poll';
'require dom';
'require lynd.common as lynd';

var kinds = {
	'client': _('Client moves'),
	'client_held': _('Client moves held back'),
	'path': _('Path states'),
	'bcast_port': _('Broadcast ports'),
	'preferred_port': _('Preferred ports')
};

var counterNames = {
	'moves': _('Client moves'),
	'moves_by_reason': _('Moves by reason'),
	'moves_held': _('Moves held back'),
	'evacuations': _('Evacuations'),
	'emergency_choices': _('Emergency choices'),
	'state_changes': _('Path state changes into'),
	'bus_reconnects': _('Bus reconnects'),
	'bridge_call_failures': _('Bridge call failures'),
	'tool_run_failures': _('Tool run failures'),
	'events': _('Events received'),
	'malformed_datagrams': _('Malformed datagrams')
};

function counterRows(counters) {
	var rows = [];
	Object.keys(counters).forEach(function(k) {
		var v = counters[k], name = counterNames[k] || k;
		if (!L.isObject(v))
			return rows.push([ name, String(v) ]);
		rows.push([ name, Object.keys(v).filter(function(s) { return v[s] }).map(function(s) {
			return '%s: %d'.format(s.replace(/_/g, ' '), v[s]);
		}).join(', ') || '0' ]);
	});
	return rows;
}

return view.extend({
	load: function() {
		return Promise.all([ lynd.decisions(), lynd.counters() ]);
	},

	update: function(data) {
		if (!lynd.showFailure(this.alertBox, this.body, data))
			return;
		this.last = data;
		var kind = this.filter.value,
		    list = (data[0].data.decisions || []).filter(function(d) { return !kind || d.kind == kind });
		list.sort(function(a, b) { return b.seq - a.seq });
		cbi_update_table(this.table, list.map(function(d) {
			return [ new Date(d.time * 1000).toLocaleString(), kinds[d.kind] || d.kind, d.subject,
				'%s → %s'.format(lynd.orDash(d.from), lynd.orDash(d.to)), d.reason ];
		}), E('em', _('No decision yet')));
		dom.content(this.countersBox, lynd.keyValueTable(counterRows(data[1].data)));
	},

	render: function(data) {
		this.alertBox = E('div');
		this.filter = E('select', {
			'class': 'cbi-input-select',
			'change': L.bind(function() { if (this.last) this.update(this.last) }, this)
		}, [ E('option', { 'value': '' }, _('All kinds')) ].concat(Object.keys(kinds).map(function(k) {
			return E('option', { 'value': k }, kinds[k]);
		})));
		this.table = lynd.table([ _('Time'), _('Kind'), _('Subject'), _('From → to'), _('Why') ]);
		this.countersBox = E('div');
		this.body = E('div', {}, [
			E('div', { 'class': 'cbi-section' }, [
				E('h3', _('Recent decisions')),
				E('div', { 'class': 'cbi-section-descr' }, [ _('Newest first. Show: '), this.filter ]),
				this.table
			]),
			E('div', { 'class': 'cbi-section' }, [ E('h3', _('Counters')), this.countersBox ])
		]);
		this.update(data);
		poll.add(L.bind(function() {
			return this.load().then(L.bind(this.update, this));
		}, this), lynd.interval);
		return E('div', {}, [ E('h2', _('Mesh path selection: decisions')), this.alertBox, this.body ]);
	},

	handleSaveApply: null,
	handleSave: null,
	handleReset: null
});
