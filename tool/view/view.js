// The page of `velmora view`: what the board's ports show, their settings and events.
const ports = [0, 1, 2, 3];
const token = document.querySelector('meta[name=token]').content;
const find = (id) => document.getElementById(id);

const parameters = ports.map(() => new Map()); // By name, of each port.
const states = ports.map(() => ({}));
const cards = [];
let rows = new Map(); // By name, of the chosen port.
let chosen = 0;

// Requests

/** The answer to a change; one that fails has words for it in `failures`. */
async function post(path, body) {
  try {
    const answer = await fetch(path, {method: 'POST', headers: {'X-Velmora-Token': token}, body});
    if (answer.status === 403) location.reload(); // It is another server's token.
    return await answer.json();
  } catch {
    return {failures: ['velmora does not answer']};
  }
}

function report(title, lines) {
  const place = find('report');
  place.hidden = false;
  place.querySelector('h2').textContent = title;
  place.querySelector('ul').replaceChildren(...lines.map((line) => element('li', {}, line)));
}

async function act(path, title, body) {
  const {failures = []} = await post(path, body);
  if (failures.length > 0) report(title, failures);
}

async function load(file) {
  const {differences = [], failures = []} = await post('load', file);
  const lines = differences.map(({name, port, line, text, reason, value}) =>
      `${name}${port === null ? '' : `@${port}`}=${text} (line ${line}): ${reason}` +
      (value ? `; the setting is ${value}` : ''));
  const result = failures.length > 0 ? 'failed' : lines.length > 0 ? 'loaded, but for' : 'loaded';
  report(`${file.name}: ${result}`, [...failures, ...lines]);
}

// Elements

function element(tag, properties, ...children) {
  const created = Object.assign(document.createElement(tag), properties);
  created.append(...children);
  return created;
}

function say(text) {
  find('connection').textContent = text;
}

/** A number without the digits that its conversions have left. */
function plain(value) {
  return typeof value === 'number' && !Number.isInteger(value) ? String(+value.toPrecision(10)) : String(value ?? '–');
}

/** A value as people read it. */
function shown({value, entry, entries, unit}) {
  const title = entries?.find((each) => each.value === value)?.title;
  return title || entry || `${plain(value)} ${unit ?? ''}`.trim();
}

// Ports

const texts = [
  ['Trigger mode', (port) => of(port, 'FG_AREATRIGGERMODE')],
  ['Trigger state', (port) => of(port, 'FG_TRIGGERSTATE')],
  ['Rate set', (port) => hertz(parameters[port].get('FG_TRIGGER_FRAMESPERSECOND')?.value)],
  ['Pictures', (port) => states[port].pictures],
  ['Lost', (port) => states[port].lost],
  ['Incomplete', (port) => states[port].incomplete],
  ['Input pulses', (port) => of(port, 'FG_TRIGGERIN_STATS_PULSECOUNT')],
  ['Input frequency', (port) => of(port, 'FG_TRIGGERIN_STATS_FREQUENCY')],
  ['Output pulses', (port) => of(port, 'FG_TRIGGEROUT_STATS_PULSECOUNT')],
];
const plots = [
  ['Rate seen', (port) => states[port].rate, (port, rate) => hertz(rate)],
  ['Trigger queue', (port) => parameters[port].get('FG_TRIGGERQUEUE_FILLLEVEL')?.value],
  ['Software queue', (port) => parameters[port].get('FG_SOFTWARETRIGGER_QUEUE_FILLLEVEL')?.value],
  ['Buffers in use', (port) => parameters[port].get('FG_FILLLEVEL')?.value, (port, part) => `${part} %`],
];
const samples = 120;
const samplePeriod = 250; // Milliseconds.

function of(port, name) {
  return shown(parameters[port].get(name) ?? {});
}

function hertz(rate = 0) {
  return `${Number(rate.toPrecision(4))} Hz`;
}

/** A line over time with its latest value in words. */
function plot(port, [title, read, words = (port, value) => value]) {
  const namespace = 'http://www.w3.org/2000/svg';
  const picture = document.createElementNS(namespace, 'svg');
  picture.setAttribute('viewBox', `0 0 ${samples} 20`);
  picture.setAttribute('preserveAspectRatio', 'none');
  picture.setAttribute('aria-hidden', 'true');
  const line = picture.appendChild(document.createElementNS(namespace, 'polyline'));
  const text = element('span');
  const values = [];
  const sample = () => {
    const value = read(port) ?? 0;
    values.push(value);
    if (values.length > samples) values.shift();
    const top = Math.max(1, ...values);
    text.textContent = words(port, value);
    line.setAttribute('points', values.map((each, i) => `${i},${19 - 18 * each / top}`).join(' '));
  };
  return {title, parts: [picture, text], update: sample};
}

function addCard(port) {
  const card = find('port').content.firstElementChild.cloneNode(true);
  const get = (selector) => card.querySelector(selector);
  get('label span').textContent = card.ariaLabel = `Port ${port}`;
  for (const button of card.querySelectorAll('button'))
    button.ariaLabel = `${button.textContent}, port ${port}`;
  get('input').addEventListener('change', () => choose(port));
  get('img').alt = `Live picture of port ${port}`;
  for (const name of ['start', 'stop'])
    get(`.${name}`).addEventListener('click', () => act(`${name}?port=${port}`, `Port ${port}`));
  get('.trigger').addEventListener('click', () => act(
      'set', 'Software trigger',
      JSON.stringify({assignments: [`FG_SENDSOFTWARETRIGGER@${port}=1`]})));
  const lines = texts.map(([title, read]) => {
    const text = element('span');
    return {title, parts: [text], update: () => text.textContent = read(port)};
  });
  const graphs = plots.map((each) => plot(port, each));
  for (const {title, parts} of [...lines, ...graphs])
    get('dl').append(element('dt', {}, title),
                     element('dd', {className: parts.length > 1 ? 'plot' : ''}, ...parts));
  cards.push({
    card,
    image: get('img'),
    choice: get('input'),
    update: () => {
      const {acquiring, reason} = states[port];
      get('.state').textContent = acquiring ? '▶ acquiring' : reason ? `■ stopped: ${reason}` : '■ stopped';
      for (const line of lines) line.update();
    },
    sample: () => graphs.forEach((graph) => graph.update()),
    waiting: null,
    busy: false,
  });
  find('ports').append(card);
}

// Pictures

/** The newest picture is drawn as soon as the one before is. */
function draw(card, blob) {
  card.waiting = blob;
  if (card.busy || !blob) return;
  card.busy = true;
  card.waiting = null;
  const url = URL.createObjectURL(blob);
  card.image.onload = card.image.onerror = () => {
    URL.revokeObjectURL(url);
    card.busy = false;
    draw(card, card.waiting);
  };
  card.image.src = url;
}

/** Takes a part off a stream's bytes: its headers, its content and what follows it. */
function takePart(bytes) {
  const text = new TextDecoder('latin1').decode(bytes.subarray(0, 512));
  const end = text.indexOf('\r\n\r\n') + 4;
  if (end < 4) return null;
  const header = (name) => Number(new RegExp(`${name}: (\\d+)`).exec(text)[1]);
  const next = end + header('Content-Length') + 2;
  if (bytes.length < next) return null;
  return {port: header('X-Port'), content: bytes.subarray(end, next - 2), rest: bytes.subarray(next)};
}

/** For a second: other windows of the browser need connections as well. */
async function receivePictures(signal) {
  const answer = await fetch('pictures?seconds=1', {signal});
  if (!answer.ok) throw new Error(answer.statusText);
  const reader = answer.body.getReader();
  let bytes = new Uint8Array();
  for (;;) {
    const {value, done} = await reader.read();
    if (done) return;
    bytes = new Uint8Array(await new Blob([bytes, value]).arrayBuffer());
    for (let part = takePart(bytes); part; part = takePart(bytes)) {
      draw(cards[part.port], new Blob([part.content], {type: 'image/jpeg'}));
      bytes = part.rest;
    }
  }
}

// Settings

/** Elements that show a parameter, and change it with `send(text)`. */
function control(parameter, send) {
  const label = {ariaLabel: `${parameter.title} (${parameter.name})`};
  if (!parameter.access.includes('write')) {
    const text = element('span');
    return {parts: [text], show: (now) => text.textContent = shown(now)};
  }
  if (parameter.entries?.length === 1 && parameter.entries[0].name === 'FG_APPLY') {
    const button = element('button', {type: 'button', ...label}, parameter.entries[0].title);
    button.addEventListener('click', () => send(parameter.entries[0].value));
    return {parts: [button], show: () => {}};
  }
  if (parameter.entries) {
    const list = element('select', label);
    list.addEventListener('change', () => send(list.value));
    const show = ({entries, value}) => {
      list.replaceChildren(...entries.map((each) => element('option', {value: each.value}, each.title || each.name)));
      list.value = value;
    };
    return {parts: [list], show};
  }
  return numberControl(parameter, label, send);
}

function numberControl(parameter, label, send) {
  const field = element('input', {type: 'number', ...label});
  const slider = element('input', {type: 'range', ariaLabel: `${label.ariaLabel}, slider`});
  const range = element('small');
  let scale, current;
  const submit = () => field.dataset.edited && field.value && send(field.valueAsNumber);
  field.addEventListener('input', () => field.dataset.edited = 'yes');
  field.addEventListener('change', submit);
  field.addEventListener('keydown', ({key}) => {
    if (key === 'Enter') submit();
    if (key === 'Escape') field.blur();
  });
  slider.addEventListener('input', () => send(field.value = scale.value(slider.valueAsNumber, current)));
  const show = (now) => {
    const {value, min, max, step, unit = ''} = now;
    scale = scaleOf(now);
    current = value;
    Object.assign(field, {min, max, step: step ?? 'any'});
    Object.assign(slider, {min: scale.place(min), max: scale.place(max), step: scale.step, disabled: !(min < max)});
    slider.value = scale.place(value);
    field.value = plain(value);
    slider.ariaValueText = shown(now);
    range.textContent = `${plain(min)} to ${plain(max)} ${unit}`.trim() + (step ? `, step ${plain(step)}` : '');
  };
  return {parts: [field, slider, range], show};
}

/** What places on a slider mean; over a wide range each step is a factor. */
function scaleOf({min, max, step}) {
  if (max - min <= 1e5) return {place: (value) => value, value: (place) => place, step: step ?? 'any'};
  const unit = step ?? (min || 1);
  const place = (value) => Math.log(value - min + unit);
  const value = (at, current) => {
    const wanted = Math.exp(at) - unit + min;
    if (!step) return Math.min(max, Math.max(min, Number(wanted.toPrecision(3))));
    let steps = Math.round((wanted - min) / step);
    // At the low end less than a step: it is one at least.
    const before = Math.round((current - min) / step);
    if (steps === before) steps += Math.sign(at - place(current));
    return Math.min(max, Math.max(min, Number((min + steps * step).toPrecision(12))));
  };
  return {place, value, step: (place(max) - place(min)) / 250};
}

/** A line of the tree. It sends one value after the other, leaving out those that came and went. */
function addRow(parameter) {
  const {name, port} = parameter;
  const message = element('div', {className: 'refused', id: `refused-${name}`});
  message.setAttribute('role', 'alert');
  let sending = false;
  let waiting = null;
  const inForce = () => parameters[port].get(name) ?? parameter;
  const send = async (value) => {
    waiting = value;
    if (sending) return;
    sending = true;
    delete body.parts[0].dataset.edited;
    while (waiting !== null) {
      const text = `${name}@${port}=${waiting}`;
      waiting = null;
      const {values = [], failures} = await post('set', JSON.stringify({assignments: [text]}));
      message.textContent = failures.join('; ').replaceAll(`${name}@${port}: `, '');
      for (const value of values) note({...inForce(), ...value});
    }
    sending = false;
    update();
  };
  const body = control(parameter, send);
  const row = element(
      'div', {className: 'row'},
      element('div', {}, parameter.title, element('code', {}, name)),
      element('div', {className: 'control'}, ...body.parts), message);
  row.dataset.name = name;
  const update = () => sending || body.parts[0].dataset.edited || body.show(inForce());
  const follow = () => {
    if (!sending) message.textContent = '';
    update();
  };
  rows.set(name, {row, update: follow});
  const [first] = body.parts;
  first.setAttribute('aria-describedby', message.id);
  first.addEventListener('blur', () => {
    delete first.dataset.edited;
    update();
  });
  update();
  return row;
}

const closed = new Set(); // Titles of groups.

function addTree({title, children, name, ...rest}) {
  if (name) return addRow({title, name, ...rest});
  const group = element('details', {open: !closed.has(title)}, element('summary', {}, title), ...children.map(addTree));
  group.addEventListener('toggle', () => group.open ? closed.delete(title) : closed.add(title));
  return group;
}

async function choose(port) {
  chosen = port;
  history.replaceState(null, '', `#${port}`);
  cards.forEach(({card, choice}, i) => {
    choice.checked = i === port;
    card.classList.toggle('chosen', i === port);
  });
  find('parameters').textContent = `Parameters of port ${port}`;
  find('events').textContent = `Events of port ${port} and the inputs`;
  find('counts').replaceChildren();
  counts.forEach(showEvent);
  // Until the tree is there, none of another port may be changed by mistake.
  rows = new Map();
  find('tree').replaceChildren();
  const answer = await fetch(`describe?port=${port}`).catch(() => null);
  const [tree] = answer ? await answer.json() : [{children: []}]; // Until the page is loaded again.
  if (port !== chosen) return;
  find('tree').replaceChildren(...tree.children.map(addTree));
  filter();
}

function filter() {
  const wanted = find('filter').value.toLowerCase();
  for (const {row} of rows.values())
    row.hidden = !row.textContent.toLowerCase().includes(wanted);
  for (const group of find('tree').querySelectorAll('details')) {
    group.hidden = !group.querySelector('.row:not([hidden])');
    if (wanted) group.open = true;
  }
  find('none').hidden = !find('tree').querySelector('.row') || Boolean(find('tree').querySelector('.row:not([hidden])'));
}

// Events

const counts = new Map(); // By name.

function portOf(event) {
  const [, letter, digit] = /CAM_PORT_([A-D])|CAM([0-3])/.exec(event) ?? [];
  return letter ? letter.charCodeAt(0) - 65 : digit && Number(digit);
}

function noteEvent({name, count}) {
  const before = counts.get(name);
  if (before?.count === count) return;
  const time = before || count === 0 ? new Date().toLocaleTimeString() : 'before';
  counts.set(name, {name, count, time});
  showEvent(counts.get(name));
}

function showEvent({name, count, time}) {
  if (count === 0 || (portOf(name) ?? chosen) !== chosen) return;
  const id = `event-${name}`;
  const row = find(id) ?? find('counts').appendChild(element('tr', {id}));
  row.replaceChildren(...[name, count, time].map((text) => element('td', {}, text)));
}

// Changes

function note(parameter) {
  parameters[parameter.port].set(parameter.name, parameter);
  if (parameter.port === chosen) rows.get(parameter.name)?.update();
}

function apply(changes) {
  changes.parameters.forEach(note);
  for (const state of changes.ports) states[state.port] = state;
  changes.events.forEach(noteEvent);
  for (const card of cards) card.update();
}

let disconnect = () => {};
/** A page that is hidden leaves its connections to others. */
function connect() {
  disconnect();
  if (document.hidden) return;
  const changes = new EventSource('changes');
  let lost = false;
  // What answers after a loss may be another server, with a token of its own.
  changes.onopen = () => lost ? location.reload() : say('Connected');
  changes.onerror = () => {
    lost = changes.readyState === EventSource.CONNECTING;
    say(lost ? 'Connection lost, trying again' : 'velmora takes no more viewers at the moment, trying again');
    if (!lost) setTimeout(connect, 5000);
  };
  changes.onmessage = ({data}) => apply(JSON.parse(data));
  const ending = new AbortController();
  disconnect = () => {
    changes.close();
    ending.abort();
  };
  const receive = async () => {
    while (!ending.signal.aborted) {
      await receivePictures(ending.signal).catch(() => new Promise((done) => setTimeout(done, 1000)));
    }
  };
  receive();
}

ports.forEach(addCard);
choose(ports.find((port) => location.hash === `#${port}`) ?? 0);
connect();
document.addEventListener('visibilitychange', connect);
setInterval(() => document.hidden || cards.forEach((card) => card.sample()), samplePeriod);
find('filter').addEventListener('input', filter);
find('start').addEventListener('click', () => act('start', 'Start'));
find('stop').addEventListener('click', () => act('stop', 'Stop'));
find('load').addEventListener('click', () => find('file').click());
find('file').addEventListener('change', async ({target}) => {
  await load(target.files[0]);
  target.value = '';
});
find('report').querySelector('button').addEventListener('click', () => find('report').hidden = true);
