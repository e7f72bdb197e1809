'use strict';
// Whatever a session holds becomes text here, never markup: textContent and attributes only.
const Flag = {Received: 1, Failed: 2, Message: 4, Request: 8, Air: 16, FromStation: 32};
const rowHeight = 24;
const paperWidth = 670; // as much as a sheet has room for
const paperLines = 200;
const byId = id => document.getElementById(id);
const data = JSON.parse(byId('data').textContent);
let objects = null; // one JSON text a row, split when the first one is needed
// What grows is handed over as what each number has more than the one before it.
function grow(differences) {
    let last = 0;
    return differences.map(difference => last += difference);
}
const numbers = grow(data.rows.number);
const times = grow(data.rows.time);
const rows = numbers.map((number, index) => ({
    number, time: times[index], name: data.names[data.rows.name[index]], flags: data.rows.flags[index],
    link: data.rows.link[index], took: data.rows.took[index], index,
}));
for (const curve of data.charts.flatMap(chart => chart.curves)) {
    curve.time = grow(curve.time);
    curve.number = grow(curve.number);
}
const ends = data.charts.flatMap(chart => chart.curves.flatMap(curve => curve.time.slice(-1)));
const length = Math.max(1000, rows.length ? rows[rows.length - 1].time : 0, ...ends);
const dark = matchMedia('(prefers-color-scheme: dark)');
const state = {window: [0, length], chosen: null, charts: [], lists: [], printing: false};

function make(tag, text, className) {
    const element = document.createElement(tag);
    if (text !== undefined) element.textContent = text;
    if (className) element.className = className;
    return element;
}

function drawn(tag, attributes, text) {
    const element = document.createElementNS('http://www.w3.org/2000/svg', tag);
    for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, value);
    if (text !== undefined) element.textContent = text;
    return element;
}

const dateOf = time => new Date((data.start + time) / 1000);
const clock = time => dateOf(time).toISOString().slice(11, 23);
const milliseconds = took => (took / 1000).toFixed(3) + ' ms';
const color = name => getComputedStyle(document.documentElement).getPropertyValue(name).trim();

function objectText(row) {
    objects ??= byId('objects').textContent.split('\n');
    return objects[row.index];
}

// The row at a place in time order; -1 before the first one.
function lastRow(list, value, key) {
    let low = 0, high = list.length;
    while (low < high) {
        const middle = (low + high) >> 1;
        if (list[middle][key] <= value) low = middle + 1; else high = middle;
    }
    return low - 1;
}

function nearestRow(time) {
    const place = Math.max(0, lastRow(rows, time, 'time'));
    const next = rows[place + 1];
    return next && next.time - time < Math.abs(time - rows[place].time) ? next : rows[place];
}

function rowOf(number) {
    const row = rows[lastRow(rows, number, 'number')];
    return row && row.number === number ? row : null;
}

// ---- The chosen message ----

function listFields(fields) {
    const list = make('dl');
    for (const [name, value] of Object.entries(fields)) {
        if (fields[name.slice(0, -5)] !== undefined && name.endsWith('_name')) continue;
        list.append(make('dt', name));
        const nested = value !== null && typeof value === 'object';
        const code = fields[name + '_name'];
        const item = nested ? make('dd', undefined, 'nested')
                            : make('dd', code === undefined ? String(value) : `${value} (${code})`);
        if (Array.isArray(value) && value.some(element => typeof element === 'object')) {
            const elements = make('ol');
            for (const element of value) {
                const part = make('li');
                part.append(typeof element === 'object' ? listFields(element) : String(element));
                elements.append(part);
            }
            item.append(elements);
        } else if (nested) {
            item.append(Array.isArray(value) ? value.join(' ') : listFields(value));
        }
        list.append(item);
    }
    return list;
}

function choose(row) {
    if (!row) return;
    state.chosen = row;
    const {fields, ...head} = JSON.parse(objectText(row));
    const details = byId('details');
    details.replaceChildren(make('h2', `#${row.number} ${row.name}`), listFields(head));
    const other = rowOf(row.link);
    if (other) {
        const button = make('button', `Show #${other.number} ${other.name}`);
        button.onclick = () => choose(other);
        details.append(button);
    }
    if (fields) details.append(make('h2', 'Fields'), listFields(fields));
    for (const list of state.lists) list.reveal(row);
    for (const chart of state.charts) chart.graph.updateOptions({}); // the line at the chosen one
}

// ---- Lists: only what is in view is in the page ----

function makeList(element, fill) {
    const list = {rows: []};
    const room = make('div', undefined, 'room');
    const draw = (first, last) => {
        const lines = list.rows.slice(first, last).map((row, index) => {
            const line = make('div', undefined, 'row');
            line.style.top = (first + index) * rowHeight + 'px';
            line.id = `${element.id}-${row.number}`;
            line.setAttribute('role', 'option');
            line.setAttribute('aria-selected', String(row === state.chosen));
            line.onclick = () => choose(row);
            fill(line, row);
            return line;
        });
        room.style.height = list.rows.length * rowHeight + 'px';
        element.replaceChildren(room, ...lines);
        const active = state.chosen && `${element.id}-${state.chosen.number}`;
        if (active && byId(active)) element.setAttribute('aria-activedescendant', active);
        else element.removeAttribute('aria-activedescendant');
    };
    list.draw = () => {
        const first = Math.max(0, Math.floor(element.scrollTop / rowHeight) - 4);
        draw(first, first + Math.ceil(element.clientHeight / rowHeight) + 8);
    };
    list.drawForPrint = () => {
        draw(0, paperLines);
        if (list.rows.length > paperLines) element.append(make('p', `and ${list.rows.length - paperLines} more`, 'quiet'));
    };
    list.show = shown => { list.rows = shown; list.draw(); };
    list.reveal = row => {
        const top = lastRow(list.rows, row.number, 'number') * rowHeight;
        if (top < element.scrollTop || top + rowHeight > element.scrollTop + element.clientHeight) {
            element.scrollTop = top - element.clientHeight / 2;
        }
        list.draw();
    };
    element.onscroll = list.draw;
    element.onkeydown = event => {
        const page = Math.floor(element.clientHeight / rowHeight);
        const steps = {ArrowDown: 1, ArrowUp: -1, PageDown: page, PageUp: -page,
                       Home: -Infinity, End: Infinity};
        if (!(event.key in steps) || !list.rows.length) return;
        event.preventDefault();
        const here = state.chosen ? lastRow(list.rows, state.chosen.number, 'number') : -1;
        choose(list.rows[Math.min(list.rows.length - 1, Math.max(0, here + steps[event.key]))]);
    };
    state.lists.push(list);
    return list;
}

const classOf = row => row.flags & Flag.Failed ? 'failed' : row.flags & Flag.Air ? 'air'
    : row.flags & Flag.Received ? 'received' : 'sent';

const table = makeList(byId('table'), (line, row) => {
    const fields = objectText(row).match(/"(?:fields|payload|session)":(.*)\}$/);
    line.append(make('span', '#' + row.number, 'quiet'), make('span', clock(row.time)),
                make('span', row.flags & Flag.Received ? '<' : '>', classOf(row)),
                make('span', row.name, classOf(row)),
                make('span', row.took ? milliseconds(row.took) : '', 'quiet'),
                make('span', fields ? fields[1].slice(0, 200) : '', 'quiet'));
});

const ladder = makeList(byId('ladder'), (line, row) => {
    const [client, modem, air] = [110, 350, 590];
    const picture = drawn('svg', {'aria-hidden': 'true'});
    for (const x of [client, modem, air]) {
        picture.append(drawn('line', {x1: x, x2: x, y1: 0, y2: rowHeight, class: 'lane'}));
    }
    const [left, right] = row.flags & Flag.Air ? [modem, air] : [client, modem];
    const toRight = row.flags & Flag.Air ? row.flags & Flag.FromStation : !(row.flags & Flag.Received);
    const [from, to] = toRight ? [left, right] : [right, left];
    const back = toRight ? -6 : 6;
    const answer = row.flags & Flag.Message && row.link ? ` (#${row.link}, ${milliseconds(row.took)})` : '';
    picture.append(
        drawn('text', {x: 4, y: 16, class: 'time'}, clock(row.time)),
        drawn('line', {x1: from, x2: to, y1: 19, y2: 19}),
        drawn('line', {x1: to, x2: to + back, y1: 19, y2: 16}),
        drawn('line', {x1: to, x2: to + back, y1: 19, y2: 22}),
        drawn('text', {x: (left + right) / 2, y: 14}, row.name + answer));
    picture.classList.add(classOf(row));
    line.setAttribute('aria-label', `${clock(row.time)} ${row.name}${answer}`);
    line.append(picture);
});

const kinds = {
    request: row => row.flags & Flag.Request,
    answer: row => row.flags & Flag.Message && row.link,
    message: row => row.flags & Flag.Message,
    air: row => row.flags & Flag.Air,
    failed: row => row.flags & Flag.Failed,
};

function filter() {
    const search = byId('search').value.toLowerCase();
    const direction = byId('direction').value;
    const kind = kinds[byId('kind').value];
    const name = byId('name').value;
    const [from, to] = state.window;
    const inTime = rows.slice(lastRow(rows, from - 1, 'time') + 1, lastRow(rows, to, 'time') + 1);
    const shown = inTime.filter(row =>
        (!direction || (direction === 'received') === Boolean(row.flags & Flag.Received)) &&
        (!kind || kind(row)) && (!name || row.name === name) &&
        (!search || row.name.includes(search) || objectText(row).toLowerCase().includes(search)));
    table.show(shown);
    ladder.show(inTime.filter(row => row.flags & (Flag.Request | Flag.Message | Flag.Failed)));
    byId('count').textContent = `${shown.length} of ${rows.length}`;
}

// ---- Charts ----

function setWindow(from, to) {
    const span = Math.min(length, Math.max(1000, to - from));
    const start = Math.min(Math.max(0, from), length - span);
    state.window = [start, start + span];
    for (const chart of state.charts) {
        chart.graph.updateOptions({dateWindow: state.window.map(time => +dateOf(time))});
    }
    showWindow();
}

function showWindow() {
    byId('window').textContent = `${state.window.map(clock).join(' to ')} UTC`;
    drawBand();
    filter();
}

function zoom(how) {
    const [from, to] = state.window;
    const span = to - from;
    const changes = {in: [from + span / 4, to - span / 4], out: [from - span / 2, to + span / 2],
                     earlier: [from - span / 2, to - span / 2], later: [from + span / 2, to + span / 2],
                     all: [0, length]};
    setWindow(...changes[how]);
}

// What stands in the curves of a chart, moment by moment.
function momentsOf(curves) {
    const next = curves.map(() => 0);
    const moments = [];
    for (;;) {
        let time = Infinity;
        curves.forEach((curve, index) => { time = Math.min(time, curve.time[next[index]] ?? Infinity); });
        if (time === Infinity) return moments.sort((one, other) => one.time - other.time);
        const moment = {time, number: 0};
        moment.values = curves.map((curve, index) => {
            if (curve.time[next[index]] !== time) return null;
            moment.number = curve.number[next[index]];
            return curve.value[next[index]++];
        });
        moments.push(moment);
    }
}

function colorsOf(count) {
    const bright = dark.matches && !state.printing;
    const hues = bright ? ['#6fb1ff', '#6fd08c', '#ffb86b', '#c69cf2', '#ff8a80', '#7fdbe6']
                        : ['#0b62c4', '#1b7f3b', '#b85c00', '#8a4fc0', '#c62828', '#0a7d8c'];
    const lines = bright ? '#37404d' : '#d5d9e0';
    return {colors: Array.from({length: count}, (_, index) => hues[index % hues.length]),
            gridLineColor: lines, axisLineColor: lines};
}

function colorLegend(legend, colors) {
    legend.forEach((name, index) => { name.style.color = colors[index]; });
}

function makeChart(chart) {
    if (!chart.curves.some(curve => curve.time.length)) return;
    const section = make('section');
    const heading = make('h2', chart.title + ' ');
    heading.append(make('small', chart.unit));
    const place = make('div', undefined, 'chart');
    place.tabIndex = 0;
    place.setAttribute('role', 'img');
    place.setAttribute('aria-label', `${chart.title}: ${chart.curves.map(curve => curve.name).join(', ')}. ` +
        'Plus and minus zoom, arrows move, 0 shows everything, Enter shows the message in the middle.');
    const legend = chart.curves.map(curve => make('small', ' ' + curve.name));
    heading.append(...legend);
    section.append(heading, place);
    byId('charts').append(section);
    const moments = momentsOf(chart.curves);
    const numberAt = new Map(moments.map(moment => [+dateOf(moment.time), moment.number]));
    const colors = colorsOf(legend.length);
    colorLegend(legend, colors.colors);
    const graph = new Dygraph(place, moments.map(moment => [dateOf(moment.time), ...moment.values]), {
        ...colors, labels: ['time', ...chart.curves.map(curve => curve.name)], labelsUTC: true,
        connectSeparatedPoints: true, drawPoints: moments.length < 300, pointSize: 2, strokeWidth: 1.5,
        legend: 'follow', highlightCircleSize: 4, axes: {x: {axisLabelWidth: 70}, y: {axisLabelWidth: 50}},
        includeZero: chart.unit === 'ms' || chart.unit === 'per second',
        stepPlot: chart.title === 'Messages', dateWindow: state.window.map(time => +dateOf(time)),
        zoomCallback: (from, to) => setWindow(...[from, to].map(time => time * 1000 - data.start)),
        clickCallback: (event, time) => choose(rowOf(numberAt.get(time)) || nearestRow(time * 1000 - data.start)),
        underlayCallback: (context, area, drawing) => {
            if (!state.chosen) return;
            context.fillStyle = color('--quiet');
            context.fillRect(drawing.toDomXCoord(+dateOf(state.chosen.time)), area.y, 1, area.h);
        },
    });
    place.onkeydown = event => {
        const how = {'+': 'in', '=': 'in', '-': 'out', ArrowLeft: 'earlier', ArrowRight: 'later', 0: 'all'}[event.key];
        if (event.key === 'Enter') choose(nearestRow((state.window[0] + state.window[1]) / 2));
        if (how) zoom(how);
        if (how) event.preventDefault();
    };
    state.charts.push({graph, legend});
}

const bandColors = ['#8ecae6', '#ffd166', '#f4a3a3', '#c3aed6', '#b5e2a8', '#f7c59f', '#9ad1c6'];
const stateNames = [...new Set(data.states.map(change => change[1]))];

function drawBand() {
    const band = byId('band');
    const [from, to] = state.window;
    const area = state.charts.length ? state.charts[0].graph.getArea() : {x: 0, w: band.clientWidth};
    const parts = [];
    data.states.forEach(([time, name, number], index) => {
        const end = index + 1 < data.states.length ? data.states[index + 1][0] : length;
        if (end < from || time > to) return;
        const part = make('button', name);
        const left = (Math.max(time, from) - from) / (to - from);
        const right = (Math.min(end, to) - from) / (to - from);
        part.style.left = area.x + left * area.w + 'px';
        part.style.width = Math.max(2, (right - left) * area.w) + 'px';
        part.style.padding = (right - left) * area.w < 12 ? '0' : '';
        part.style.background = bandColors[stateNames.indexOf(name) % bandColors.length];
        part.title = `${name} from ${clock(time)}`;
        part.onclick = () => choose(rowOf(number) || nearestRow(time));
        parts.push(part);
    });
    band.replaceChildren(...parts);
    byId('states').hidden = data.states.length === 0;
}

function applyColors() {
    for (const {graph, legend} of state.charts) {
        const options = colorsOf(legend.length);
        graph.updateOptions(options);
        colorLegend(legend, options.colors);
    }
}

// ---- The page ----

document.title = data.title;
byId('title').textContent = data.title;
byId('about').textContent = `${dateOf(0).toISOString().slice(0, 19).replace('T', ' ')} UTC, ` +
    `${(length / 1e6).toFixed(1)} s, ${data.events} events` +
    (rows.length < data.all ? `; of ${data.all} calls and messages ${rows.length} are here: of the most frequent every ` +
                              'second, fourth and so on' : '');
for (const name of [...data.names].sort()) byId('name').append(make('option', name));
data.charts.forEach(makeChart);
dark.onchange = applyColors;
showWindow();
for (const button of document.querySelectorAll('[data-zoom]')) {
    button.onclick = () => zoom(button.dataset.zoom);
}
let typing = 0;
byId('search').oninput = () => { clearTimeout(typing); typing = setTimeout(filter, 150); };
for (const id of ['direction', 'kind', 'name']) byId(id).onchange = filter;
addEventListener('resize', () => { drawBand(); state.lists.forEach(list => list.draw()); });
addEventListener('beforeprint', () => {
    state.printing = true;
    applyColors();
    document.documentElement.style.setProperty('--shrink', Math.min(1, paperWidth / byId('pictures').clientWidth));
    state.lists.forEach(list => list.drawForPrint());
});
addEventListener('afterprint', () => {
    state.printing = false;
    applyColors();
    state.lists.forEach(list => list.draw());
});
