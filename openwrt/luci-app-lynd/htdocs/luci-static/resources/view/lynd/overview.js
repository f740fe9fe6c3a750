'use strict';
'require view';
'require poll';
'require dom';
'require ui';
'require lynd.common as lynd';
'require lynd.chart as chart';

function bcastPorts(br) {
	var parts = [];
	if (br.broadcast_file_port)
		parts.push(br.broadcast_file_port);
	(br.bcast_ports || []).forEach(function(v) {
		if (v.class_0 || v.class_1)
			parts.push((v.vid ? _('VLAN %d: %s / %s').format(v.vid, lynd.orDash(v.class_0), lynd.orDash(v.class_1))
				: _('untagged: %s / %s').format(lynd.orDash(v.class_0), lynd.orDash(v.class_1))));
	});
	return parts.length ? parts.join(', ') : '—';
}

function percent(v, full) {
	return '%.1f %%'.format(100 * (+v || 0) / full);
}

return view.extend({
	load: function() {
		return Promise.all([ lynd.status(), lynd.paths() ]);
	},

	handleShadow: function(enable) {
		return lynd.setShadow(enable).then(L.bind(function(reply) {
			if (reply.error)
				ui.addNotification(null, E('p', reply.error), 'danger');
			return this.refresh();
		}, this));
	},

	renderNode: function(reply) {
		var s = reply.data, shadow = lynd.yesNo(s.shadow);
		if (s.shadow && s.shadow_held)
			shadow = _('yes, %d writes held back').format(s.shadow_held);
		var shadowCell = E('span', {}, shadow);
		// Only a session that may write gets the switch.
		if (L.hasViewPermission())
			shadowCell = E('span', {}, [ shadow, ' ', E('button', {
				'class': 'cbi-button cbi-button-action',
				'click': ui.createHandlerFn(this, 'handleShadow', !s.shadow)
			}, s.shadow ? _('Steer again') : _('Decide only, steer nothing')) ]);
		var bridges = lynd.table([ _('Bridge'), _('Loop avoidance'), _('Path selection'),
			_('Preferred port'), _('Broadcast ports') ]);
		cbi_update_table(bridges, (s.bridges || []).map(function(br) {
			return [ br.name, lynd.yesNo(br.loop_avoidance), lynd.yesNo(br.path_selection),
				lynd.orDash(br.preferred_port), bcastPorts(br) ];
		}), E('em', _('No bridge configured')));
		return E('div', {}, [
			lynd.keyValueTable([
				[ _('Work mode'), s.work_mode ],
				[ _('Uptime'), '%t'.format(s.uptime) ],
				[ _('Log level'), String(s.log_level) ],
				[ _('Shadow mode'), shadowCell ],
				[ _('Version'), '%s (%s)'.format(s.version, s.revision) ]
			]),
			bridges
		]);
	},

	renderPaths: function(reply) {
		var table = lynd.table([ _('Path'), _('Type'), _('State'), _('Changes last hour'), _('Rate'),
			_('Utilisation'), _('Free airtime'), _('Clients'), _('Signal') ]);
		cbi_update_table(table, (reply.data.paths || []).map(function(p) {
			return [ p.name, p.type, lynd.stateBadge(p.state, p.state_seconds), p.changes_last_hour,
				_('%d Mbit/s').format(p.rate), '%d %%'.format(p.util),
				p.overload ? _('%s, overloaded').format(percent(p.quota, 10000)) : percent(p.quota, 10000),
				p.clients, (p.ma_rssi || p.ma_snr) ? _('%d dBm, SNR %d dB').format(p.ma_rssi, p.ma_snr) : '—' ];
		}), E('em', _('No path is configured')));
		return table;
	},

	renderChart: function(reply) {
		return chart.render(chart.record(reply.data.paths || []));
	},

	update: function(data) {
		if (!lynd.showFailure(this.alertBox, this.body, data))
			return;
		dom.content(this.nodeBox, this.renderNode(data[0]));
		dom.content(this.pathsBox, this.renderPaths(data[1]));
		dom.content(this.chartBox, this.renderChart(data[1]));
	},

	refresh: function() {
		return this.load().then(L.bind(this.update, this));
	},

	render: function(data) {
		this.alertBox = E('div');
		this.nodeBox = E('div');
		this.pathsBox = E('div');
		this.chartBox = E('div');
		this.body = E('div', {}, [
			E('div', { 'class': 'cbi-section' }, [ E('h3', _('Node')), this.nodeBox ]),
			E('div', { 'class': 'cbi-section' }, [ E('h3', _('Paths')), this.pathsBox ]),
			E('div', { 'class': 'cbi-section' }, [ E('h3', _('Last 30 minutes')), this.chartBox ])
		]);
		this.update(data);
		poll.add(L.bind(this.refresh, this), lynd.interval);
		return E('div', {}, [
			E('h2', _('Mesh path selection: overview')),
			E('div', { 'class': 'cbi-map-descr' },
				_('What lynd is doing on this node, refreshed every %d seconds.').format(lynd.interval)),
			this.alertBox,
			this.body
		]);
	},

	handleSaveApply: null,
	handleSave: null,
	handleReset: null
});
