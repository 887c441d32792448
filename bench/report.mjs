// Turns what run.mjs measured into the tables of docs/performance.md and the data of the plots.
import { readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';

const sorted = (values) => [...values].sort((a, b) => a - b);
const median = (values) => {
  const middle = (values.length - 1) / 2;
  return (sorted(values)[Math.floor(middle)] + sorted(values)[Math.ceil(middle)]) / 2;
};

function rounded(value) {
  if (value === 0) {
    return '0';
  }
  const digits = Math.max(0, 2 - Math.floor(Math.log10(Math.abs(value))));
  return Number(value.toFixed(Math.min(digits, 3))).toLocaleString('en-US', { maximumFractionDigits: 3 });
}

const table = (head, rows) =>
  [head, head.map((_, column) => (column ? '---:' : '---')), ...rows].map((row) => `| ${row.join(' | ')} |`).join('\n');

/// The median, and lowest to highest.
const withSpread = (values) =>
  `${rounded(median(values))} (${rounded(Math.min(...values))}-${rounded(Math.max(...values))})`;

class Results {
  constructor(results) {
    this.results = results;
  }
  values(title, server, key) {
    return this.results[title][server]?.map((round) => round[key]);
  }
  median(title, server, key) {
    return median(this.values(title, server, key));
  }
  worst(title, server, key) {
    return Math.max(...this.values(title, server, key));
  }
  /// Round by round, as both were measured one after the other.
  ratios(title, key, server, other) {
    const values = this.values(title, server, key);
    return this.values(title, other, key).map((value, round) => values[round] / value);
  }
}

function sideBySide(results, titles, names, key, unit, scale = 1) {
  const rows = titles.map((title) => {
    const cells = names.map((name) => {
      const values = results.values(title, name, key);
      return values ? withSpread(values.map((value) => value * scale)) : '-';
    });
    const ratio = (other) => `${rounded(median(results.ratios(title, key, 'service', other)))}`;
    return [title, ...cells, ratio('bare'), ratio('node')];
  });
  return { unit, rows };
}

function goals(measured) {
  const results = new Results(measured.results);
  const rows = [];
  const add = (work, goal, value, met) => rows.push([work, goal, value, met ? 'met' : '**not met**']);
  const faster = (work, title, key, other, least) => {
    const ratio = median(results.ratios(title, key, 'service', other));
    const name = { bare: 'the bare Qt server', node: 'Node `ws`' }[other];
    add(work, `${least} x ${name}`, `${rounded(ratio)} x`, ratio >= least);
  };
  for (const command of ['GetSize', 'SetPenColor']) {
    faster(`16 clients, ${command}`, `16 clients ${command}`, 'rate', 'bare', 1.15);
    faster(`16 clients, ${command}`, `16 clients ${command}`, 'rate', 'node', 1);
  }
  faster('pipelined 20,000', 'pipelined GetSize', 'rate', 'bare', 2);
  faster('pipelined 20,000', 'pipelined GetSize', 'rate', 'node', 4);
  for (const command of ['GetSize', 'SetPenColor']) {
    const tail = median(results.ratios(`ping-pong ${command}`, 'p99', 'service', 'bare'));
    add(`ping-pong p99, ${command}`, 'at most the bare Qt server', `${rounded(tail)} x`, tail <= 1);
  }
  faster('1 MiB image', 'image 1 MiB', 'rate', 'bare', 15);
  faster('1 MiB image', 'image 1 MiB', 'rate', 'node', 1.5);
  const image = results.median('image 1 MiB', 'service', 'p50') / 1000;
  add('1 MiB image', 'median under 5 ms', `${rounded(image)} ms`, image < 5);
  const behind = results.worst('push behind a reply', 'service', 'p999') / 1000;
  add('push 1 ms behind a reply', 'p99.9 under 5 ms, worst round', `${rounded(behind)} ms`, behind < 5);
  faster('GetPointer, 100,000 points', 'points 100,000', 'rate', 'bare', 5);
  // 1 is linear, 2 is quadratic.
  const power = median(measured.pointsInTurn.map(({ few, many }) => Math.log(many / few) / Math.log(100)));
  add('GetPointer, 10,000 to 1,000,000 points', 'linear: time is points to the power of at most 1.1', rounded(power),
    power <= 1.1);
  const [service, ...others] = Object.values(measured.digests).map((digests) => JSON.stringify(digests));
  add('texts of GetPointer, GetInks, GetSize', 'the same bytes', others.every((one) => one === service) ? 'yes' : 'no',
    others.every((one) => one === service));
  for (const [title, servers] of Object.entries(measured.memory)) {
    const { reply, peak, rest } = servers.service;
    add(`memory, ${title}`, 'peak at most 8 n above rest', `${rounded(peak / reply)} n`, peak <= 8 * reply);
    add(`memory, ${title}`, 'back to rest after the next small picture (within 1 MB)', `${rounded(rest)} MB above`,
      rest <= 1);
  }
  add('wake-ups a second at rest', '0', rounded(measured.wakeUps), measured.wakeUps === 0);
  return table(['work', 'goal', 'measured', ''], rows);
}

function tables(measured, titles) {
  const results = new Results(measured.results);
  const names = Object.keys(titles);
  const all = Object.keys(measured.results);
  const like = (...starts) => all.filter((title) => starts.some((start) => title.startsWith(start)));
  const section = (heading, part) => [`### ${heading}`, '',
    table([part.unit, ...names.map((name) => titles[name]), ': bare', ': Node'], part.rows), ''].join('\n');
  const spread = (starts, key, unit, scale) => sideBySide(results, like(...starts), names, key, unit, scale);

  const memoryRows = Object.entries(measured.memory).flatMap(([title, servers]) =>
    Object.entries(servers).map(([name, { reply, empty, peak, after, rest }]) =>
      [`${title}, ${titles[name]}`, ...[reply, empty, peak].map(rounded), rounded(peak / reply), rounded(after),
        rounded(rest)]));
  const { machine } = measured;
  const rounds = Object.values(measured.results).map((servers) => servers.service.length);
  return [
    `Measured on ${machine.cores} x ${machine.cpu}, Linux ${machine.kernel}, Qt ${machine.qt}, Node ${machine.node}, in`
      + ` ${rounded(machine.seconds)} s; ${Math.min(...rounds)} to ${Math.max(...rounds)} rounds, in turn. Load of the`
      + ` machine when it began: ${machine.loadBefore.toFixed(2)}. Each number is the median of the rounds, with the lowest and the highest in`
      + ' brackets; ": bare" and ": Node" are the medians of the ratios round by round.', '',
    '### Goals', '', goals(measured), '',
    section('Small commands', spread(['16 clients', 'pipelined', 'ping-pong'], 'rate', 'replies a second')),
    section('Small commands, one client: median', spread(['ping-pong'], 'p50', 'µs')),
    section('Small commands, one client: p99', spread(['ping-pong'], 'p99', 'µs')),
    section('Small commands, one client: p99.9', spread(['ping-pong'], 'p999', 'µs')),
    section('Processor time of the server for a message', spread(['16 clients', 'pipelined', 'ping-pong', 'image'],
      'serverCost', 'µs')),
    section('Images: throughput', spread(['image'], 'megabytes', 'MB/s')),
    section('Images: median', spread(['image'], 'p50', 'ms', 1e-3)),
    section('GetPointer: median', spread(['points'], 'p50', 'ms', 1e-3)),
    section('A picture of 200 KiB pushed: until the last client has it', spread(['push to'], 'p50', 'ms', 1e-3)),
    section('Command, reply, and 1 ms later a push: median', spread(['push behind'], 'p50', 'ms', 1e-3)),
    section('Command, reply, and 1 ms later a push: p99.9', spread(['push behind'], 'p999', 'ms', 1e-3)),
    '### Memory', '',
    'In MB. Peak and after: above what the process had before the reply; n: peak in lengths of the reply; after: 2.5 s'
      + ' later; at the end: when a picture of 1,000 bytes has followed, above the start.', '',
    table(['', 'reply', 'at rest', 'peak', 'n', 'after', 'at the end'], memoryRows), '',
    '### The load', '',
    'The share of its core that the load client used.', '',
    table(['', ...names.map((name) => titles[name])],
      like('16 clients', 'pipelined', 'image').map((title) =>
        [title, ...names.map((name) => rounded(results.median(title, name, 'clientLoad')))])), '',
    '### Start and WPS picture', '',
    table(['ms', ...Object.keys(measured.start).map((name) => titles[name])],
      [['from start to listening', ...Object.values(measured.start).map(withSpread)]]), '',
    `WPS picture with name and date at 300 dpi, from the virtual pad: median ${rounded(measured.wps.p50 / 1000)} ms,`
      + ` slowest ${rounded(measured.wps.max / 1000)} ms.`, '',
    '### Parts', '',
    table(['', 'µs', 'characters or items a second'], measured.parts.map((part) =>
      [`\`${part.run_name}\`${part.label ? `, ${part.label}` : ''}`,
        rounded(part.real_time / { ns: 1000, us: 1, ms: 0.001 }[part.time_unit]),
        rounded(part.bytes_per_second ?? part.items_per_second)])),
  ].join('\n');
}

function plotData(measured, titles, plotsDir) {
  const results = new Results(measured.results);
  const write = (file, names, starts, key, position, scale = 1) => {
    const rows = Object.keys(measured.results).filter((title) => title.startsWith(starts)).map((title) =>
      [position(title), ...names.map((name) => results.median(title, name, key) * scale)].join('\t'));
    const head = ['x', ...names.map((name) => titles[name])].map((name) => `"${name}"`).join('\t');
    writeFileSync(join(plotsDir, file), [head, ...rows, ''].join('\n'));
  };
  const number = (title) => Number(title.replace(/[^0-9]/g, ''));
  const bytes = (title) => number(title) * (title.includes('MiB') ? 1024 : 1);
  const working = ['service', 'bare', 'node'];
  write('images.dat', Object.keys(titles), 'image', 'megabytes', bytes);
  write('points.dat', working, 'points', 'p50', number, 1e-3);
  write('push.dat', working, 'push to', 'p50', number, 1e-3);
  const commands = ['16 clients GetSize', '16 clients SetPenColor', 'pipelined GetSize'];
  const rows = commands.map((title) =>
    [`"${title}"`, ...Object.keys(titles).map((name) => results.median(title, name, 'rate') / 1000)].join('\t'));
  writeFileSync(join(plotsDir, 'small.dat'),
    [['x', ...Object.values(titles)].map((name) => `"${name}"`).join('\t'), ...rows, ''].join('\n'));
}

export function writeReport(measured, titles, sourceDir, plotsDir) {
  const file = join(sourceDir, 'docs', 'performance.md');
  const text = readFileSync(file, 'utf8');
  const [start, end] = ['<!-- measured by scripts/bench.sh -->\n', '<!-- end of what was measured -->\n'];
  const [before, rest] = text.split(start);
  const [, after] = rest.split(end);
  writeFileSync(file, `${before}${start}\n${tables(measured, titles)}\n\n${end}${after}`);
  plotData(measured, titles, plotsDir);
}
