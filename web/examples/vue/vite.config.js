import vue from '@vitejs/plugin-vue';

export default { plugins: [vue()], build: { target: ['chrome69', 'firefox60'] } };
