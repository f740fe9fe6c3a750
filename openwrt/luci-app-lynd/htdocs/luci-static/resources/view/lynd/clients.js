'use strict';
'require view';
'require poll';
'require dom';
'require ui';
'require lynd.common as lynd';

function hostName(hints, mac) {
	var h = hints[String(mac).toUpperCase()] || hints[String(mac).toLowerCase()];
	return (h && h.name) ? h.name : null;
}

function flags(c) {
	var out = [];
	if (c.ranked_first) out.push(_('ranked first'));
	if (c.harmonic_mean) out.push(_('shares the radio with the access side'));
	if (c.limited_by_station) out.push(_('limited by the station'));
	if (c.overloaded) out.push(_('overloaded'));
	return out.join(', ');
}

function explainCard(e) {
	var rows = [ [ _('Client'), e.mac ] ];
	if (e.rule)
		rows.push([ _('Operator rule'), e.pinned_to ? '%s (%s)'.format(e.rule, e.pinned_to) : e.rule ]);
	if (e.path != null) {
		rows.push([ _('Rated at uptime'), '%t'.format(e.rated_at) ],
			[ _('On path'), lynd.orDash(e.path) ],
			[ _('Station'), _('%d Mbit/s, quality %d').format(e.station_rate, e.station_quality) ]);
	}
	var out = [ lynd.keyValueTable(rows) ];
	if (Array.isArray(e.candidates)) {
		var t = lynd.table([ _('Candidate path'), _('Quality'), _('Backhaul quality'), _('Weight'),
			_('Free airtime'), _('Rate'), _('Why it ranked there') ]);
		cbi_update_table(t, e.candidates.map(function(c) {
			var why = flags(c);
			return [ E('strong', c.path), c.quality, c.bq, c.weight, '%.1f %%'.format(c.quota / 100),
				_('%d Mbit/s').format(c.rate), why ? '%s (%s)'.format(c.why, why) : c.why ];
		}), E('em', _('No candidate path')));
		out.push(E('h4', _('Candidates')), t);
	}
	var result = [ [ _('Outcome'), E('strong', e.outcome) ] ];
	if (e.ranked_best != null)
		result.push([ _('Ranked best'), lynd.orDash(e.ranked_best) ], [ _('Best path'), lynd.orDash(e.best_path) ]);
	if (L.isObject(e.damping) && e.damping.checked)
		result.push([ _('Damping'), (e.damping.held ? _('held: gain %d %% below %d %%') : _('passed: gain %d %%, needed %d %%'))
			.format(e.damping.delta_percent, e.damping.threshold) ]);
	if (e.guard_rule)
		result.push([ _('Flap guard'), _('%s, %d s left').format(e.guard_rule, e.held_seconds_left) ]);
	if (e.count_needed)
		result.push([ _('Busy or idle count'), _('%d of %d').format(e.count, e.count_needed) ]);
	out.push(E('h4', _('Result')), lynd.keyValueTable(result));
	return out;
}

return view.extend({
	load: function() {
		return Promise.all([
			lynd.clients(),
			lynd.status(),
			L.resolveDefault(lynd.hostHints(), {})
		]);
	},

	handleExplain: function(mac) {
		return lynd.explainClient(mac).then(function(reply) {
			ui.showModal(_('Why %s is where it is').format(mac), [
				reply.error ? E('div', { 'class': 'alert-message warning' }, reply.error) : E('div', {}, explainCard(reply.data)),
				E('div', { 'class': 'right' }, E('button', { 'class': 'cbi-button', 'click': ui.hideModal }, _('Close')))
			]);
		});
	},

	// The daemon's uptime now, from the one status read at load.
	uptimeNow: function() {
		return this.uptimeAtLoad + (Date.now() - this.loadedAt) / 1000;
	},

	lastMove: function(c) {
		if (c.last_move == null)
			return '—';
		var ago = Math.max(0, this.uptimeNow() - c.last_move);
		return _('%s ago: %s → %s, %s').format('%t'.format(ago), lynd.orDash(c.last_move_from),
			lynd.orDash(c.last_move_to), lynd.orDash(c.last_move_reason));
	},

	update: function(clients) {
		if (!lynd.showFailure(this.alertBox, this.body, [ clients ]))
			return;
		var hints = this.hints;
		cbi_update_table(this.table, (clients.data.clients || []).map(L.bind(function(c) {
			var name = hostName(hints, c.mac);
			return [
				E('a', { 'href': '#', 'title': _('Why is it there?'),
					'click': ui.createHandlerFn(this, 'handleExplain', c.mac) },
					name ? '%s (%s)'.format(name, c.mac) : c.mac),
				lynd.orDash(c.ap_iface), lynd.orDash(c.path), lynd.orDash(c.best_path),
				_('%d Mbit/s').format(c.rate), c.moves, this.lastMove(c)
			];
		}, this)), E('em', _('No client')));
	},

	render: function(data) {
		this.hints = data[2] || {};
		this.uptimeAtLoad = data[1].data ? data[1].data.uptime : 0;
		this.loadedAt = Date.now();
		this.alertBox = E('div');
		this.table = lynd.table([ _('Client'), _('Access point'), _('Path'), _('Best path'), _('Rate'),
			_('Moves'), _('Last move') ]);
		this.body = E('div', { 'class': 'cbi-section' }, [
			E('div', { 'class': 'cbi-section-descr' }, _('Click a client to see why it is on its path.')),
			this.table
		]);
		this.update(data[1].error ? data[1] : data[0]);
		poll.add(L.bind(function() {
			return lynd.clients().then(L.bind(this.update, this));
		}, this), lynd.interval);
		return E('div', {}, [ E('h2', _('Mesh path selection: clients')), this.alertBox, this.body ]);
	},

	handleSaveApply: null,
	handleSave: null,
	handleReset: null
});
