// Measures each frame of the page that it stands in, and leaves the result in its place as JSON.
function channels(color) {
  const parts = color.match(/[\d.]+/g).map(Number);
  return {rgb: parts.slice(0, 3), alpha: parts.length > 3 ? parts[3] : 1};
}

function luminance(rgb) {
  const [r, g, b] = rgb.map(v => v / 255).map(v => v <= 0.03928 ? v / 12.92 : ((v + 0.055) / 1.055) ** 2.4);
  return 0.2126 * r + 0.7152 * g + 0.0722 * b;
}

function background(view, element) {
  for (let at = element; at; at = at.parentElement) {
    const color = channels(view.getComputedStyle(at).backgroundColor);
    if (color.alpha === 1) return color.rgb;
  }
  return [255, 255, 255];
}

function against(view, element, color) {
  const [a, b] = [channels(color).rgb, background(view, element.parentElement)].map(luminance);
  return (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
}

function contrast(view, page) {
  let least = 21;
  for (const element of page.body.querySelectorAll('*')) {
    const text = [...element.childNodes].some(node => node.nodeType === 3 && node.data.trim());
    if (!text || !element.getClientRects().length) continue;
    const style = view.getComputedStyle(element);
    least = Math.min(least, against(view, element, element.closest('svg') ? style.fill : style.color));
  }
  return least;
}

// What is wrong with the pictures: what leaves them, texts that overlap or are small, what cannot be told from its
// background, one without words. What only guides the eye may be faint.
function pictureFaults(view, page) {
  const faults = new Set();
  const paint = style => [style.fill, style.stroke].find(color => color !== 'none');
  for (const picture of page.querySelectorAll('svg')) {
    const around = picture.getBoundingClientRect();
    const texts = [...picture.querySelectorAll('text')];
    const scale = picture.viewBox.baseVal.width / around.width;
    const named = (picture.getAttribute('aria-labelledby') || '').split(' ').every(id => page.getElementById(id));
    if (!picture.closest('.legend') && !(named && picture.querySelector('desc').textContent)) faults.add('no words');
    if (!around.width) faults.add('not shown');
    for (const part of picture.querySelectorAll('path,text')) {
      const at = part.getBoundingClientRect();
      const style = view.getComputedStyle(part);
      if (at.left < around.left - 1 || at.right > around.right + 1 || at.top < around.top - 1 ||
        at.bottom > around.bottom + 1) faults.add('outside: ' + part.outerHTML.slice(0, 60));
      if (part.localName === 'path' && !part.matches('.rule') && !(against(view, picture, paint(style)) >= 3)) {
        faults.add('faint: ' + part.getAttribute('class'));
      }
    }
    for (const text of texts) {
      const one = text.getBoundingClientRect();
      if (parseFloat(view.getComputedStyle(text).fontSize) / scale < 11) faults.add('small: ' + text.textContent);
      if (texts.some(other => other !== text && other.getBoundingClientRect().left < one.right &&
        other.getBoundingClientRect().right > one.left && other.getBoundingClientRect().top < one.bottom &&
        other.getBoundingClientRect().bottom > one.top)) faults.add('overlaps: ' + text.textContent);
    }
  }
  for (const key of page.querySelectorAll('.legend span')) {
    if (!(against(view, key, view.getComputedStyle(key).backgroundColor) >= 3)) faults.add('faint: ' + key.className);
  }
  return [...faults].join('|');
}

// Where a box of the grid stands: minutes from the first hour, length, lane of its service.
function box(element) {
  const grid = element.closest('.epg');
  const top = other => Math.round(other.getBoundingClientRect().top);
  const hour = grid.querySelector('.hour').getBoundingClientRect();
  const place = element.getBoundingClientRect();
  const minute = hour.width / 60;
  const service = Math.max(...[...grid.querySelectorAll('.name')].map(top).filter(own => own <= top(element)));
  const tops = [...new Set([...grid.querySelectorAll('.box')].map(top))].filter(own => own >= service);
  const lane = tops.sort((a, b) => a - b).indexOf(top(element));
  return Math.round((place.left - 1 - hour.left) / minute) + '+' + Math.round((place.width + 2) / minute) + '/' + lane;
}

function scrolling(page) {
  return [...page.querySelectorAll('body *')].filter(element => element.scrollWidth > element.clientWidth + 1 &&
    element.ownerDocument.defaultView.getComputedStyle(element).overflowX === 'auto');
}

function measure(frame) {
  const view = frame.contentWindow;
  const page = frame.contentDocument;
  const shown = [...page.querySelectorAll('.box')].filter(element => element.getClientRects().length);
  const ids = [...page.querySelectorAll('[id]')].map(element => element.id);
  const links = [...page.querySelectorAll('a')].map(link => link.getAttribute('href'));
  const result = {
    width: view.innerWidth,
    scrollWidth: page.documentElement.scrollWidth,
    sections: [...page.querySelectorAll('main>section')].filter(s => s.offsetHeight > 0).map(s => s.id).join(' '),
    active: page.querySelectorAll('script,img,iframe,object,embed,link,form,base,image,use,animate,set,foreignObject,[onerror],[onclick]').length,
    brokenLinks: links.filter(href => !href.startsWith('#') || !ids.includes(href.slice(1))).length,
    doubleIds: ids.length - new Set(ids).size,
    contrast: contrast(view, page),
    dark: luminance(background(view, page.body)) < 0.2,
    boxes: shown.map(box).join(' '),
    overrun: [...page.querySelectorAll('td,th,dd,dt')].filter(cell => cell.getClientRects().length &&
      cell.scrollWidth > cell.clientWidth + 1).map(cell => cell.textContent.slice(0, 40)).join('|'),
    scrolling: scrolling(page).length,
    shadowless: scrolling(page).filter(
      element => view.getComputedStyle(element).backgroundAttachment !== 'local, local, scroll, scroll').length,
    charts: page.querySelectorAll('svg.chart').length,
    lines: page.querySelectorAll('svg.marks').length,
    pictureFaults: pictureFaults(view, page),
    rows: page.querySelectorAll('#services tbody tr').length,
  };
  if (shown.length) {
    page.querySelectorAll('details').forEach(details => details.open = false);
    shown[0].click();
  }
  return {result, target: shown.length && page.getElementById(shown[0].hash.slice(1))};
}

addEventListener('load', () => {
  const frames = [...document.querySelectorAll('iframe')].map(measure);
  setTimeout(() => {
    const results = frames.map(({result, target}) => ({...result, opened: !!target && target.offsetHeight > 0}));
    document.body.innerHTML = '<pre></pre>';
    document.querySelector('pre').textContent = JSON.stringify(results);
  }, 500);
});
