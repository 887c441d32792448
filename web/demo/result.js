// The confirmed signature in its formats.
(() => {
  'use strict';

  const { t, onLanguage, replaceChildren } = window.Demo;
  const find = (id) => document.getElementById(id);

  const FORMATS = [
    { name: 'formatPng', file: 'signature.png', of: ({ png }) => png },
    { name: 'formatPngWhite', file: 'signature-white.png', of: ({ pngWhite }) => pngWhite },
    { name: 'formatSvg', file: 'signature.svg', of: ({ svg }) => svg },
    { name: 'formatPoints', file: 'signature.json', of: ({ points }) => points },
  ];

  const MOST_ROWS = 1000;

  let result = null;
  let chosen = FORMATS[0];
  let downloadUrl = '';

  /** The stroke that is being written counts as well. */
  const strokesOf = (points) => points.filter(({ strokeEnd }, i) => strokeEnd || i === points.length - 1).length;

  const kilobytes = (blob) => (blob.size / 1000).toFixed(1);

  function saveFile(blob, name) {
    const link = document.createElement('a');
    link.href = URL.createObjectURL(blob);
    link.download = name;
    document.body.append(link); // some browsers follow no link from outside the page
    link.click();
    link.remove();
    setTimeout(() => URL.revokeObjectURL(link.href), 10000);
  }

  function tab(format) {
    const button = document.createElement('button');
    button.type = 'button';
    button.id = `tab-${format.name}`;
    button.setAttribute('role', 'tab');
    button.setAttribute('aria-controls', 'format-panel');
    button.setAttribute('aria-selected', String(format === chosen));
    button.tabIndex = format === chosen ? 0 : -1;
    button.textContent = t(format.name);
    button.addEventListener('click', () => choose(format));
    return button;
  }

  function choose(format) {
    chosen = format;
    render();
    find(`tab-${chosen.name}`).focus(); // the tabs were made anew
  }

  /** Arrow keys walk through the tabs, as in any list of tabs. */
  function walk(event) {
    const step = { ArrowRight: 1, ArrowLeft: -1 }[event.key];
    if (!step) return;
    const there = available();
    choose(there[(there.indexOf(chosen) + step + there.length) % there.length]);
    event.preventDefault();
  }

  const available = () => FORMATS.filter(({ of }) => of(result));

  function row(point, index) {
    const line = document.createElement('tr');
    const values = [index + 1, point.x, point.y, point.pressure, point.time, point.strokeEnd ? t('yes') : ''];
    for (const value of values) line.insertCell().textContent = String(value);
    return line;
  }

  function renderPoints() {
    const { points } = result;
    const rows = points.slice(0, MOST_ROWS).map(row);
    replaceChildren(find('points-rows'), rows);
    const blob = new Blob([JSON.stringify(points, null, 1)], { type: 'application/json' });
    const facts = t('pointsFacts', { points: points.length, strokes: strokesOf(points), size: kilobytes(blob) });
    find('format-facts').textContent =
      rows.length < points.length ? `${facts} ${t('pointsCut', { rows: rows.length })}` : facts;
    return blob;
  }

  function renderPicture(data) {
    const picture = find('picture');
    picture.alt = t('pictureAlt', { format: t(chosen.name) });
    const shown = chosen;
    picture.onload = () => {
      if (chosen !== shown) return;
      const { naturalWidth: width, naturalHeight: height } = picture;
      find('format-facts').textContent = t('pictureFacts', { width, height, size: kilobytes(data.blob) });
    };
    picture.src = data.dataURL;
  }

  function render() {
    find('result').hidden = !result;
    if (!result) return;
    if (!available().includes(chosen)) [chosen] = available();
    replaceChildren(find('formats'), available().map(tab));
    find('format-panel').setAttribute('aria-labelledby', `tab-${chosen.name}`);
    const data = chosen.of(result);
    const isPoints = Array.isArray(data);
    find('picture').hidden = isPoints;
    find('points-box').hidden = !isPoints;
    find('format-facts').textContent = '';
    const blob = isPoints ? renderPoints() : data.blob;
    if (!isPoints) renderPicture(data);
    URL.revokeObjectURL(downloadUrl);
    downloadUrl = find('download').href = URL.createObjectURL(blob);
    find('download').download = chosen.file;
  }

  find('formats').addEventListener('keydown', walk);
  onLanguage(render);

  /** `signature`: {png, pngWhite, svg: SignPadData or null, points}, or null to show nothing. */
  function show(signature) {
    result = signature;
    [chosen] = FORMATS;
    render();
  }

  Object.assign(window.Demo, { result: { show }, strokesOf, saveFile });
})();
