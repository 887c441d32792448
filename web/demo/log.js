// The list of requests and replies.
(() => {
  'use strict';

  const { t, onLanguage, replaceChildren } = window.Demo;
  const MOST_OF_A_KIND = 500; // polls and others apart, so that polling does not push the rest out
  const LONGEST_TEXT = 300;
  const POLLS = new Set(['GetSize', 'GetPointer', 'GetDeviceConfirmOrCancelKeyStatus', 'IsValid']);

  const list = document.getElementById('log');
  const showPolls = document.getElementById('log-polls');
  let entries = [];

  const apiOf = ({ direction, text }) =>
    ((direction === 'sent' ? /\/MVSignSDK\/(\w+)/ : /"API":"(\w+)"/).exec(text) || [])[1];

  const clock = (date) =>
    `${date.toTimeString().slice(0, 8)}.${String(date.getMilliseconds()).padStart(3, '0')}`;

  function cell(className, text) {
    const element = document.createElement('span');
    element.className = className;
    element.textContent = text;
    return element;
  }

  function lineOf(entry) {
    const { time, direction, text } = entry;
    const item = document.createElement('li');
    item.dataset.direction = direction;
    const mark = cell('direction', direction === 'sent' ? '→' : '←');
    mark.setAttribute('aria-label', t(direction === 'sent' ? 'logSent' : 'logReceived'));
    mark.setAttribute('role', 'img');
    const rest = text.length > LONGEST_TEXT ? ` ${t('logMore', { count: text.length })}` : '';
    item.append(cell('clock', clock(time)), mark, cell('text', text.slice(0, LONGEST_TEXT) + rest));
    return entry.line = item;
  }

  const isShown = ({ isPoll }) => showPolls.checked || !isPoll;

  function updateCount() {
    document.getElementById('log-count').textContent = t('logCount', { count: entries.length });
  }

  function dropOldest(kind) {
    const [oldest, ...others] = entries.filter(({ isPoll }) => isPoll === kind);
    if (others.length < MOST_OF_A_KIND) return;
    entries.splice(entries.indexOf(oldest), 1);
    if (oldest.line) oldest.line.remove();
  }

  function add(detail) {
    const entry = { ...detail, time: new Date(), isPoll: POLLS.has(apiOf(detail)) };
    entries.push(entry);
    dropOldest(entry.isPoll);
    updateCount();
    if (!isShown(entry)) return;
    const atEnd = list.scrollTop + list.clientHeight > list.scrollHeight - 8;
    list.append(lineOf(entry));
    if (atEnd) list.scrollTop = list.scrollHeight;
  }

  function rebuild() {
    replaceChildren(list, entries.filter(isShown).map(lineOf));
    list.scrollTop = list.scrollHeight;
    updateCount();
  }

  function save() {
    const lines = entries.map(({ time, direction, text }) =>
      `${time.toISOString()} ${direction === 'sent' ? '->' : '<-'} ${text}\n`);
    window.Demo.saveFile(new Blob(lines, { type: 'text/plain' }), 'signature-log.txt');
  }

  showPolls.addEventListener('change', rebuild);
  onLanguage(rebuild);
  document.getElementById('log-save').addEventListener('click', save);
  document.getElementById('log-clear').addEventListener('click', () => {
    entries = [];
    rebuild();
  });

  window.Demo.log = { add };
})();
