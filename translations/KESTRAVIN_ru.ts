<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru" sourcelanguage="en">
<context>
    <name>Velmora::Application::Application</name>
    <message>
        <source>Show</source>
        <translation>Показать</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Выход</translation>
    </message>
</context>
<context>
    <name>Velmora::Application::ServiceManager</name>
    <message>
        <source>ERROR</source>
        <translation>ОШИБКА</translation>
    </message>
    <message>
        <source>COULD NOT COMMUNICATE WITH SERVICE.</source>
        <translation>НЕ УДАЛОСЬ СВЯЗАТЬСЯ СО СЛУЖБОЙ.</translation>
    </message>
    <message>
        <source>ERROR PARSING APPVERSION, REINSTALL APPLICATION</source>
        <translation>ОШИБКА ЧТЕНИЯ ВЕРСИИ ПРОГРАММЫ, ПЕРЕУСТАНОВИТЕ ПРОГРАММУ</translation>
    </message>
    <message>
        <source>SERVICE VERSION IS DIFFERENT THAN APPLICATION VERSION, REINSTALL APPLICATION</source>
        <translation>ВЕРСИЯ СЛУЖБЫ ОТЛИЧАЕТСЯ ОТ ВЕРСИИ ПРОГРАММЫ, ПЕРЕУСТАНОВИТЕ ПРОГРАММУ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::AboutWidget</name>
    <message>
        <source>Build date </source>
        <translation>Дата сборки </translation>
    </message>
    <message>
        <source>COPYRIGHT © %1 BRANTEL. ALL RIGHTS RESERVED.</source>
        <translation>© %1 BRANTEL. ВСЕ ПРАВА ЗАЩИЩЕНЫ.</translation>
    </message>
    <message>
        <source>CLOSE</source>
        <translation>ЗАКРЫТЬ</translation>
    </message>
    <message>
        <source>This program uses %1, licensed under</source>
        <translation>Эта программа использует %1 по лицензии</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::AdWidget</name>
    <message>
        <source>CLOSE</source>
        <translation>ЗАКРЫТЬ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::DriveHealthInfoWidget</name>
    <message>
        <source>LESS THAN 10% OF FREE DISK SPACE LEFT.</source>
        <translation>НА ДИСКЕ ОСТАЛОСЬ МЕНЕЕ 10% СВОБОДНОГО МЕСТА.</translation>
    </message>
    <message>
        <source>LESS THAN 20% OF FREE DISK SPACE LEFT.</source>
        <translation>НА ДИСКЕ ОСТАЛОСЬ МЕНЕЕ 20% СВОБОДНОГО МЕСТА.</translation>
    </message>
    <message>
        <source>LESS THAN 10% OF REMAINING DISK LIFE LEFT.</source>
        <translation>ОСТАЛОСЬ МЕНЕЕ 10% РЕСУРСА ДИСКА.</translation>
    </message>
    <message>
        <source>LESS THAN 70% OF REMAINING DISK LIFE LEFT.</source>
        <translation>ОСТАЛОСЬ МЕНЕЕ 70% РЕСУРСА ДИСКА.</translation>
    </message>
    <message>
        <source>DRIVE CAN WORK BETTER IF CONNECTED TO FASTER SATA CONTROLLER.</source>
        <translation>ДИСК МОЖЕТ РАБОТАТЬ ЛУЧШЕ, ЕСЛИ ПОДКЛЮЧИТЬ ЕГО К БОЛЕЕ БЫСТРОМУ КОНТРОЛЛЕРУ SATA.</translation>
    </message>
    <message>
        <source>FIRMWARE UPDATE AVAILABLE FOR DRIVE.</source>
        <translation>ДЛЯ ДИСКА ДОСТУПНО ОБНОВЛЕНИЕ ПРОШИВКИ.</translation>
    </message>
    <message>
        <source>DRIVE STATUS</source>
        <translation>СОСТОЯНИЕ ДИСКА</translation>
    </message>
    <message>
        <source>FREE SPACE</source>
        <translation>СВОБОДНОЕ МЕСТО</translation>
    </message>
    <message>
        <source>LIFE REMAINING</source>
        <translation>ОСТАТОЧНЫЙ РЕСУРС</translation>
    </message>
    <message>
        <source>BAD SECTORS</source>
        <translation>СБОЙНЫЕ СЕКТОРЫ</translation>
    </message>
    <message>
        <source>SATA SPEED</source>
        <translation>СКОРОСТЬ SATA</translation>
    </message>
    <message>
        <source>FIRMWARE UPDATE</source>
        <translation>ОБНОВЛЕНИЕ ПРОШИВКИ</translation>
    </message>
    <message>
        <source>CLOSE</source>
        <translation>ЗАКРЫТЬ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::FirmwareUpdatePage</name>
    <message>
        <source>FIRMWARE UPDATE</source>
        <translation>ОБНОВЛЕНИЕ ПРОШИВКИ</translation>
    </message>
    <message>
        <source>SSD MODEL:</source>
        <translation>МОДЕЛЬ SSD:</translation>
    </message>
    <message>
        <source>FIRMWARE VERSION:</source>
        <translation>ВЕРСИЯ ПРОШИВКИ:</translation>
    </message>
    <message>
        <source>AVAILABLE UPDATES:</source>
        <translation>ДОСТУПНЫЕ ОБНОВЛЕНИЯ:</translation>
    </message>
    <message>
        <source>ANALYZED:</source>
        <translation>ПРОАНАЛИЗИРОВАНО:</translation>
    </message>
    <message>
        <source>CHECK FOR UPDATES</source>
        <translation>ПРОВЕРИТЬ ОБНОВЛЕНИЯ</translation>
    </message>
    <message>
        <source>UPDATE FIRMWARE</source>
        <translation>ОБНОВИТЬ ПРОШИВКУ</translation>
    </message>
    <message>
        <source>NO AVAILABLE UPDATES</source>
        <translation>НЕТ ДОСТУПНЫХ ОБНОВЛЕНИЙ</translation>
    </message>
    <message>
        <source>NO DATA</source>
        <translation>НЕТ ДАННЫХ</translation>
    </message>
    <message>
        <source>NOT AVAILABLE</source>
        <translation>НЕДОСТУПНО</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::HomePage</name>
    <message>
        <source>CHOOSE YOUR DRIVE</source>
        <translation>ВЫБЕРИТЕ ДИСК</translation>
    </message>
    <message>
        <source>WELCOME</source>
        <translation>ДОБРО ПОЖАЛОВАТЬ</translation>
    </message>
    <message>
        <source>SELECT THE DRIVE YOU WANT TO LOOK AFTER.</source>
        <translation>ВЫБЕРИТЕ ДИСК, ЗА КОТОРЫМ ХОТИТЕ СЛЕДИТЬ.</translation>
    </message>
    <message>
        <source>SEARCHING FOR DRIVES...</source>
        <translation>ПОИСК ДИСКОВ...</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::MainWindow</name>
    <message>
        <source>KESTRAVIN SSD</source>
        <translation>KESTRAVIN SSD</translation>
    </message>
    <message>
        <source>UPDATE AVAILABLE</source>
        <translation>ДОСТУПНО ОБНОВЛЕНИЕ</translation>
    </message>
    <message>
        <source>APPLICATION UPDATE AVAILABLE</source>
        <translation>ДОСТУПНО ОБНОВЛЕНИЕ ПРОГРАММЫ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::MenuBar</name>
    <message>
        <source>SSD MANAGEMENT</source>
        <translation>УПРАВЛЕНИЕ SSD</translation>
    </message>
    <message>
        <source>ADDITIONAL FEATURES</source>
        <translation>ДОПОЛНИТЕЛЬНЫЕ ФУНКЦИИ</translation>
    </message>
    <message>
        <source>DATA MIGRATION</source>
        <translation>ПЕРЕНОС ДАННЫХ</translation>
    </message>
    <message>
        <source>TECHNICAL SUPPORT</source>
        <translation>ТЕХНИЧЕСКАЯ ПОДДЕРЖКА</translation>
    </message>
    <message>
        <source>SETTINGS</source>
        <translation>НАСТРОЙКИ</translation>
    </message>
    <message>
        <source>MY SSD</source>
        <translation>МОЙ SSD</translation>
    </message>
    <message>
        <source>SMART PARAMETERS</source>
        <translation>ПАРАМЕТРЫ SMART</translation>
    </message>
    <message>
        <source>PERFORMANCE TEST</source>
        <translation>ТЕСТ ПРОИЗВОДИТЕЛЬНОСТИ</translation>
    </message>
    <message>
        <source>FIRMWARE UPDATE</source>
        <translation>ОБНОВЛЕНИЕ ПРОШИВКИ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::PerformanceCheckPage</name>
    <message>
        <source>%1 MB/s</source>
        <translation>%1 МБ/с</translation>
    </message>
    <message>
        <source>PERFORMANCE CHECK</source>
        <translation>ПРОВЕРКА ПРОИЗВОДИТЕЛЬНОСТИ</translation>
    </message>
    <message>
        <source>ELAPSED</source>
        <translation>ПРОШЛО</translation>
    </message>
    <message>
        <source>REMAINING</source>
        <translation>ОСТАЛОСЬ</translation>
    </message>
    <message>
        <source>WRITE:</source>
        <translation>ЗАПИСЬ:</translation>
    </message>
    <message>
        <source>READ:</source>
        <translation>ЧТЕНИЕ:</translation>
    </message>
    <message>
        <source>0  MB/s</source>
        <translation>0 МБ/с</translation>
    </message>
    <message>
        <source>0 MB/s</source>
        <translation>0 МБ/с</translation>
    </message>
    <message>
        <source>TEST DETAILS: TEST PERFORMS CONTINIOUS WRITE AND READ OF 4MB BLOCKS</source>
        <translation>ПОДРОБНОСТИ ТЕСТА: ТЕСТ ВЫПОЛНЯЕТ НЕПРЕРЫВНУЮ ЗАПИСЬ И ЧТЕНИЕ БЛОКОВ ПО 4 МБ</translation>
    </message>
    <message>
        <source>START</source>
        <translation>ЗАПУСТИТЬ</translation>
    </message>
    <message>
        <source>%1%</source>
        <translation>%1%</translation>
    </message>
    <message>
        <source>RUNNING</source>
        <translation>ВЫПОЛНЯЕТСЯ</translation>
    </message>
    <message>
        <source>CANCEL</source>
        <translation>ОТМЕНА</translation>
    </message>
    <message>
        <source>TEST FINISHED</source>
        <translation>ТЕСТ ЗАВЕРШЁН</translation>
    </message>
    <message>
        <source>TEST CANCELED</source>
        <translation>ТЕСТ ОТМЕНЁН</translation>
    </message>
    <message>
        <source>TEST FAILED</source>
        <translation>ОШИБКА ТЕСТА</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::SSDStatusPage</name>
    <message>
        <source>0.00 BYTES</source>
        <translation>0.00 БАЙТ</translation>
    </message>
    <message>
        <source>NO DATA</source>
        <translation>НЕТ ДАННЫХ</translation>
    </message>
    <message>
        <source>ANALYZED: </source>
        <translation>ПРОАНАЛИЗИРОВАНО: </translation>
    </message>
    <message>
        <source>MY SSD</source>
        <translation>МОЙ SSD</translation>
    </message>
    <message>
        <source>SSD MODEL:</source>
        <translation>МОДЕЛЬ SSD:</translation>
    </message>
    <message>
        <source>CAPACITY:</source>
        <translation>ЁМКОСТЬ:</translation>
    </message>
    <message>
        <source>SERIAL NUMBER:</source>
        <translation>СЕРИЙНЫЙ НОМЕР:</translation>
    </message>
    <message>
        <source>FIRMWARE:</source>
        <translation>ПРОШИВКА:</translation>
    </message>
    <message>
        <source>DRIVE STATUS:</source>
        <translation>СОСТОЯНИЕ ДИСКА:</translation>
    </message>
    <message>
        <source>ACTION NEEDED</source>
        <translation>ТРЕБУЮТСЯ ДЕЙСТВИЯ</translation>
    </message>
    <message>
        <source>DETAILS</source>
        <translation>ПОДРОБНЕЕ</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>ОК</translation>
    </message>
    <message>
        <source>GOOD</source>
        <translation>ХОРОШЕЕ</translation>
    </message>
    <message>
        <source>FIRMWARE STATUS:</source>
        <translation>СОСТОЯНИЕ ПРОШИВКИ:</translation>
    </message>
    <message>
        <source>UPDATE AVAILABLE</source>
        <translation>ДОСТУПНО ОБНОВЛЕНИЕ</translation>
    </message>
    <message>
        <source>UP TO DATE</source>
        <translation>АКТУАЛЬНА</translation>
    </message>
    <message>
        <source>TRIM SUPPORT:</source>
        <translation>ПОДДЕРЖКА TRIM:</translation>
    </message>
    <message>
        <source>AHCI SUPPORT:</source>
        <translation>ПОДДЕРЖКА AHCI:</translation>
    </message>
    <message>
        <source>TOTAL STORAGE:</source>
        <translation>ОБЩИЙ ОБЪЁМ:</translation>
    </message>
    <message>
        <source>USED STORAGE:</source>
        <translation>ЗАНЯТО:</translation>
    </message>
    <message>
        <source>FREE STORAGE:</source>
        <translation>СВОБОДНО:</translation>
    </message>
    <message>
        <source>ANALYZED:</source>
        <translation>ПРОАНАЛИЗИРОВАНО:</translation>
    </message>
    <message>
        <source>RELOAD</source>
        <translation>ОБНОВИТЬ</translation>
    </message>
    <message>
        <source>YES</source>
        <translation>ДА</translation>
    </message>
    <message>
        <source>NO</source>
        <translation>НЕТ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::SmartParametersPage</name>
    <message>
        <source>NOT SUPPORTED</source>
        <translation>НЕ ПОДДЕРЖИВАЕТСЯ</translation>
    </message>
    <message>
        <source>SMART PARAMETERS</source>
        <translation>ПАРАМЕТРЫ SMART</translation>
    </message>
    <message>
        <source>LIFE REMAINING:</source>
        <translation>ОСТАТОЧНЫЙ РЕСУРС:</translation>
    </message>
    <message>
        <source>TEMPERATURE:</source>
        <translation>ТЕМПЕРАТУРА:</translation>
    </message>
    <message>
        <source>POWER-ON HOURS</source>
        <translation>ЧАСЫ РАБОТЫ</translation>
    </message>
    <message>
        <source>POWER CYCLES</source>
        <translation>ЦИКЛЫ ВКЛЮЧЕНИЯ</translation>
    </message>
    <message>
        <source>AVG ERASE COUNT</source>
        <translation>СР. ЧИСЛО СТИРАНИЙ</translation>
    </message>
    <message>
        <source>MAX ERASE COUNT</source>
        <translation>МАКС. ЧИСЛО СТИРАНИЙ</translation>
    </message>
    <message>
        <source>GB WRITTEN</source>
        <translation>ЗАПИСАНО ГБ</translation>
    </message>
    <message>
        <source>%1%</source>
        <translation>%1%</translation>
    </message>
    <message>
        <source>%1 °C</source>
        <translation>%1 °C</translation>
    </message>
    <message>
        <source>%1 GB</source>
        <translation>%1 ГБ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::SupportFormPage</name>
    <message>
        <source>FIELDS MUST CONTAIN CORRECT DATA</source>
        <translation>ПОЛЯ ДОЛЖНЫ СОДЕРЖАТЬ КОРРЕКТНЫЕ ДАННЫЕ</translation>
    </message>
    <message>
        <source>SENDING REQUEST</source>
        <translation>ОТПРАВКА ЗАПРОСА</translation>
    </message>
    <message>
        <source>SUPPORT REQUEST SENT</source>
        <translation>ЗАПРОС В ТЕХПОДДЕРЖКУ ОТПРАВЛЕН</translation>
    </message>
    <message>
        <source>SUPPORT REQUEST REJECTED</source>
        <translation>ЗАПРОС В ТЕХПОДДЕРЖКУ ОТКЛОНЁН</translation>
    </message>
    <message>
        <source>UNABLE TO CONNECT TO SERVER</source>
        <translation>НЕ УДАЁТСЯ ПОДКЛЮЧИТЬСЯ К СЕРВЕРУ</translation>
    </message>
    <message>
        <source>UNABLE TO COMPLETE OPERATION</source>
        <translation>НЕ УДАЁТСЯ ЗАВЕРШИТЬ ОПЕРАЦИЮ</translation>
    </message>
    <message>
        <source>INVALID CAPTCHA</source>
        <translation>НЕВЕРНАЯ CAPTCHA</translation>
    </message>
    <message>
        <source>CAPTCHA NOT AVAILABLE</source>
        <translation>CAPTCHA НЕДОСТУПНА</translation>
    </message>
    <message>
        <source>CHOOSE YOUR DRIVE</source>
        <translation>ВЫБЕРИТЕ ДИСК</translation>
    </message>
    <message>
        <source>CONTACT FORM</source>
        <translation>ФОРМА ОБРАТНОЙ СВЯЗИ</translation>
    </message>
    <message>
        <source>YOUR TEXT</source>
        <translation>ТЕКСТ СООБЩЕНИЯ</translation>
    </message>
    <message>
        <source>YOUR SSD:</source>
        <translation>ВАШ SSD:</translation>
    </message>
    <message>
        <source>YOUR EMAIL:</source>
        <translation>ВАШ E-MAIL:</translation>
    </message>
    <message>
        <source>TYPE YOUR EMAIL</source>
        <translation>ВВЕДИТЕ ВАШ E-MAIL</translation>
    </message>
    <message>
        <source>CAPTCHA:</source>
        <translation>CAPTCHA:</translation>
    </message>
    <message>
        <source>LOADING...</source>
        <translation>ЗАГРУЗКА...</translation>
    </message>
    <message>
        <source>GENERATE</source>
        <translation>СГЕНЕРИРОВАТЬ</translation>
    </message>
    <message>
        <source>TYPE CAPTCHA</source>
        <translation>ВВЕДИТЕ CAPTCHA</translation>
    </message>
    <message>
        <source>BY SENDING THIS FORM YOU AGREE THAT BRANTEL PROCESSES THE DATA IT CARRIES: YOUR E-MAIL ADDRESS, YOUR MESSAGE, THE SERIAL NUMBER OF THE CHOSEN DRIVE AND THE VERSION OF THIS PROGRAM. THEY ARE USED ONLY TO ANSWER YOUR REQUEST, ARE NOT PASSED ON TO THIRD PARTIES AND ARE DELETED WHEN YOUR CASE IS CLOSED. YOU MAY ASK AT ANY TIME TO SEE, CORRECT OR DELETE THEM.</source>
        <translation>ОТПРАВЛЯЯ ЭТУ ФОРМУ, ВЫ СОГЛАШАЕТЕСЬ С ТЕМ, ЧТО BRANTEL ОБРАБАТЫВАЕТ СОДЕРЖАЩИЕСЯ В НЕЙ ДАННЫЕ: ВАШ АДРЕС ЭЛЕКТРОННОЙ ПОЧТЫ, ВАШЕ СООБЩЕНИЕ, СЕРИЙНЫЙ НОМЕР ВЫБРАННОГО ДИСКА И ВЕРСИЮ ЭТОЙ ПРОГРАММЫ. ОНИ ИСПОЛЬЗУЮТСЯ ТОЛЬКО ДЛЯ ОТВЕТА НА ВАШ ЗАПРОС, НЕ ПЕРЕДАЮТСЯ ТРЕТЬИМ ЛИЦАМ И УДАЛЯЮТСЯ ПОСЛЕ ЗАКРЫТИЯ ВАШЕГО ОБРАЩЕНИЯ. ВЫ В ЛЮБОЕ ВРЕМЯ МОЖЕТЕ ПОПРОСИТЬ ПОКАЗАТЬ, ИСПРАВИТЬ ИЛИ УДАЛИТЬ ИХ.</translation>
    </message>
    <message>
        <source>SEND MESSAGE</source>
        <translation>ОТПРАВИТЬ СООБЩЕНИЕ</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::AlertPage</name>
    <message>
        <source>DATA LOSS WARNING</source>
        <translation>ПРЕДУПРЕЖДЕНИЕ О ПОТЕРЕ ДАННЫХ</translation>
    </message>
    <message>
        <source>WARNING:
THIS OPERATION WILL ARASE ALL DATA ON DESTINATION DISK.</source>
        <translation>ВНИМАНИЕ:
ЭТА ОПЕРАЦИЯ УДАЛИТ ВСЕ ДАННЫЕ НА ЦЕЛЕВОМ ДИСКЕ.</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::ErrorPage</name>
    <message>
        <source>MIGRATION FAILED</source>
        <translation>ОШИБКА ПЕРЕНОСА</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::FileSystemFilter</name>
    <message>
        <source>LOADING...</source>
        <translation>ЗАГРУЗКА...</translation>
    </message>
    <message>
        <source>PATH</source>
        <translation>ПУТЬ</translation>
    </message>
    <message>
        <source>SIZE</source>
        <translation>РАЗМЕР</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::FiltersPage</name>
    <message>
        <source>CHOOSE FILES TO MIGRATE</source>
        <translation>ВЫБЕРИТЕ ФАЙЛЫ ДЛЯ ПЕРЕНОСА</translation>
    </message>
    <message>
        <source>CALCULATE</source>
        <translation>РАССЧИТАТЬ</translation>
    </message>
    <message>
        <source>PLEASE WAIT FOR PARTITION SIZE ESTIMATION...</source>
        <translation>ПОДОЖДИТЕ, ИДЁТ ОЦЕНКА РАЗМЕРА РАЗДЕЛОВ...</translation>
    </message>
    <message>
        <source>FILES AND FOLDERS</source>
        <translation>ФАЙЛЫ И ПАПКИ</translation>
    </message>
    <message>
        <source>FILE TYPES</source>
        <translation>ТИПЫ ФАЙЛОВ</translation>
    </message>
    <message>
        <source>DATA TO MIGRATE:</source>
        <translation>ДАННЫЕ ДЛЯ ПЕРЕНОСА:</translation>
    </message>
    <message>
        <source>UNSELECT FILES AND FOLDERS YOU WANT TO SKIP DURING MIGRATION</source>
        <translation>СНИМИТЕ ОТМЕТКУ С ФАЙЛОВ И ПАПОК, КОТОРЫЕ НУЖНО ПРОПУСТИТЬ ПРИ ПЕРЕНОСЕ</translation>
    </message>
    <message>
        <source>UNSELECT FILE TYPES YOU WANT TO SKIP DURING MIGRATION</source>
        <translation>СНИМИТЕ ОТМЕТКУ С ТИПОВ ФАЙЛОВ, КОТОРЫЕ НУЖНО ПРОПУСТИТЬ ПРИ ПЕРЕНОСЕ</translation>
    </message>
    <message>
        <source>VIDEO</source>
        <translation>ВИДЕО</translation>
    </message>
    <message>
        <source>SOUND</source>
        <translation>АУДИО</translation>
    </message>
    <message>
        <source>DOCUMENTS</source>
        <translation>ДОКУМЕНТЫ</translation>
    </message>
    <message>
        <source>PICTURES</source>
        <translation>ИЗОБРАЖЕНИЯ</translation>
    </message>
    <message>
        <source>CALCULATING...</source>
        <translation>ВЫЧИСЛЕНИЕ...</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::FinishPage</name>
    <message>
        <source>MIGRATION STATUS</source>
        <translation>СОСТОЯНИЕ ПЕРЕНОСА</translation>
    </message>
    <message>
        <source>MIGRATION SUCCESFUL</source>
        <translation>ПЕРЕНОС УСПЕШНО ЗАВЕРШЁН</translation>
    </message>
    <message>
        <source>Velmora tool has successfully migrated your operating system, but the files and directories listed below failed to copy. Despite this your system should be operational.</source>
        <translation>Программа Velmora успешно перенесла вашу операционную систему, но перечисленные ниже файлы и папки скопировать не удалось. Несмотря на это, система должна работать.</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::InitPage</name>
    <message>
        <source>CHOOSE YOUR DRIVE</source>
        <translation>ВЫБЕРИТЕ ДИСК</translation>
    </message>
    <message>
        <source>MIGRATE FROM</source>
        <translation>ПЕРЕНЕСТИ С</translation>
    </message>
    <message>
        <source>MIGRATE TO</source>
        <translation>ПЕРЕНЕСТИ НА</translation>
    </message>
    <message>
        <source>DRIVE:</source>
        <translation>ДИСК:</translation>
    </message>
    <message>
        <source>DRIVE STORAGE:</source>
        <translation>ОБЪЁМ ДИСКА:</translation>
    </message>
    <message>
        <source>OCCUPIED SPACE:</source>
        <translation>ЗАНЯТО:</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::Migration</name>
    <message>
        <source>INVALID STATE</source>
        <translation>НЕДОПУСТИМОЕ СОСТОЯНИЕ</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::MigrationController</name>
    <message>
        <source>MIGRATION WAS CANCELED</source>
        <translation>ПЕРЕНОС ОТМЕНЁН</translation>
    </message>
    <message>
        <source>FAILED TO CLEAN DISK ON DESTINATION DRIVE.</source>
        <translation>НЕ УДАЛОСЬ ОЧИСТИТЬ ЦЕЛЕВОЙ ДИСК.</translation>
    </message>
    <message>
        <source>FAILED TO CREATE PARTITION ON DESTINATION DRIVE (%1).</source>
        <translation>НЕ УДАЛОСЬ СОЗДАТЬ РАЗДЕЛ НА ЦЕЛЕВОМ ДИСКЕ (%1).</translation>
    </message>
    <message>
        <source>FAILED TO FORMAT PARTITION ON DESTINATION DRIVE (%1).</source>
        <translation>НЕ УДАЛОСЬ ОТФОРМАТИРОВАТЬ РАЗДЕЛ НА ЦЕЛЕВОМ ДИСКЕ (%1).</translation>
    </message>
    <message>
        <source>FAILED TO COPY FILES (%1).</source>
        <translation>НЕ УДАЛОСЬ СКОПИРОВАТЬ ФАЙЛЫ (%1).</translation>
    </message>
    <message>
        <source>FAILED TO CONFIGURE BOOT OPTIONS (%1).</source>
        <translation>НЕ УДАЛОСЬ НАСТРОИТЬ ПАРАМЕТРЫ ЗАГРУЗКИ (%1).</translation>
    </message>
    <message>
        <source>SERVICE IS NOT RESPONSIVE.</source>
        <translation>СЛУЖБА НЕ ОТВЕЧАЕТ.</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::MigrationWizard</name>
    <message>
        <source>CANCEL</source>
        <translation>ОТМЕНА</translation>
    </message>
    <message>
        <source>BACK</source>
        <translation>НАЗАД</translation>
    </message>
    <message>
        <source>NEXT</source>
        <translation>ДАЛЕЕ</translation>
    </message>
    <message>
        <source>START</source>
        <translation>ЗАПУСТИТЬ</translation>
    </message>
    <message>
        <source>APPLY</source>
        <translation>ПРИМЕНИТЬ</translation>
    </message>
    <message>
        <source>HOME</source>
        <translation>НА ГЛАВНУЮ</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::PageBase</name>
    <message>
        <source>STEP</source>
        <translation>ШАГ</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::PartitionDetailsWidget</name>
    <message>
        <source>EXCLUDE FILES...</source>
        <translation>ИСКЛЮЧИТЬ ФАЙЛЫ...</translation>
    </message>
    <message>
        <source>[NO LABEL]</source>
        <translation>[БЕЗ МЕТКИ]</translation>
    </message>
    <message>
        <source>UPDATING USED SIZE AFTER FILTERS APPLIED</source>
        <translation>ПЕРЕСЧЁТ ЗАНЯТОГО МЕСТА С УЧЁТОМ ФИЛЬТРОВ</translation>
    </message>
    <message>
        <source>DATA FITS BUT RECOMMENDED MINIMUM SIZE IS: %1</source>
        <translation>ДАННЫЕ ПОМЕСТЯТСЯ, НО РЕКОМЕНДУЕМЫЙ МИНИМАЛЬНЫЙ РАЗМЕР: %1</translation>
    </message>
    <message>
        <source>DATA DOES NOT FIT TO PARTITION. INCREASE PARTITION SIZE OR FILTER DATA.</source>
        <translation>ДАННЫЕ НЕ ПОМЕЩАЮТСЯ В РАЗДЕЛ. УВЕЛИЧЬТЕ РАЗМЕР РАЗДЕЛА ИЛИ ОТФИЛЬТРУЙТЕ ДАННЫЕ.</translation>
    </message>
    <message>
        <source>RECOMMENDED SIZE: %1</source>
        <translation>РЕКОМЕНДУЕМЫЙ РАЗМЕР: %1</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::PartitionSizePage</name>
    <message>
        <source>PARTITIONS</source>
        <translation>РАЗДЕЛЫ</translation>
    </message>
    <message>
        <source>Please wait for partition size estimation...</source>
        <translation>Подождите, идёт оценка размера разделов...</translation>
    </message>
    <message>
        <source>SOURCE DRIVE</source>
        <translation>ИСХОДНЫЙ ДИСК</translation>
    </message>
    <message>
        <source>PARTITIONS TO MIGRATE</source>
        <translation>РАЗДЕЛЫ ДЛЯ ПЕРЕНОСА</translation>
    </message>
    <message>
        <source>DESTINATION DRIVE</source>
        <translation>ЦЕЛЕВОЙ ДИСК</translation>
    </message>
    <message>
        <source>PARTITION</source>
        <translation>РАЗДЕЛ</translation>
    </message>
    <message>
        <source>USED</source>
        <translation>ЗАНЯТО</translation>
    </message>
    <message>
        <source>SIZE</source>
        <translation>РАЗМЕР</translation>
    </message>
    <message>
        <source>EXCLUDE FILES</source>
        <translation>ИСКЛЮЧИТЬ ФАЙЛЫ</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::ProgressPage</name>
    <message>
        <source>MIGRATION STATUS</source>
        <translation>СОСТОЯНИЕ ПЕРЕНОСА</translation>
    </message>
    <message>
        <source>MIGRATION IN PROGRESS</source>
        <translation>ИДЁТ ПЕРЕНОС</translation>
    </message>
    <message>
        <source>REMOVING PARTITIONS...</source>
        <translation>УДАЛЕНИЕ РАЗДЕЛОВ...</translation>
    </message>
    <message>
        <source>PREPARING NEW PARTITIONS...</source>
        <translation>ПОДГОТОВКА НОВЫХ РАЗДЕЛОВ...</translation>
    </message>
    <message>
        <source>COPYING FILES... %1 / %2</source>
        <translation>КОПИРОВАНИЕ ФАЙЛОВ... %1 / %2</translation>
    </message>
    <message>
        <source>CHANGING BOOT CONFIGURATION...</source>
        <translation>ИЗМЕНЕНИЕ КОНФИГУРАЦИИ ЗАГРУЗКИ...</translation>
    </message>
</context>
<context>
    <name>Velmora::Settings::GeneralSettings</name>
    <message>
        <source>GENERAL</source>
        <translation>ОБЩИЕ</translation>
    </message>
</context>
<context>
    <name>Velmora::Settings::GeneralSettingsWidget</name>
    <message>
        <source>START ON SYSTEM STARTUP</source>
        <translation>ЗАПУСКАТЬ ПРИ ЗАГРУЗКЕ СИСТЕМЫ</translation>
    </message>
    <message>
        <source>ENABLE AUTOMATIC UPDATES CHECK</source>
        <translation>ВКЛЮЧИТЬ АВТОМАТИЧЕСКУЮ ПРОВЕРКУ ОБНОВЛЕНИЙ</translation>
    </message>
    <message>
        <source>LANGUAGE</source>
        <translation>ЯЗЫК</translation>
    </message>
    <message>
        <source>CHANGES WILL TAKE EFFECT AFTER AN APPLICATION RESTART</source>
        <translation>ИЗМЕНЕНИЯ ВСТУПЯТ В СИЛУ ПОСЛЕ ПЕРЕЗАПУСКА ПРОГРАММЫ</translation>
    </message>
</context>
<context>
    <name>Velmora::Settings::SmartSettings</name>
    <message>
        <source>S.M.A.R.T.</source>
        <translation>S.M.A.R.T.</translation>
    </message>
    <message>
        <source>NONE</source>
        <translation>НИКОГДА</translation>
    </message>
    <message>
        <source>EVERY 5 MINUTES</source>
        <translation>КАЖДЫЕ 5 МИНУТ</translation>
    </message>
    <message>
        <source>EVERY 10 MINUTES</source>
        <translation>КАЖДЫЕ 10 МИНУТ</translation>
    </message>
    <message>
        <source>EVERY 15 MINUTES</source>
        <translation>КАЖДЫЕ 15 МИНУТ</translation>
    </message>
    <message>
        <source>EVERY 30 MINUTES</source>
        <translation>КАЖДЫЕ 30 МИНУТ</translation>
    </message>
    <message>
        <source>EVERY HOUR</source>
        <translation>КАЖДЫЙ ЧАС</translation>
    </message>
</context>
<context>
    <name>Velmora::Settings::SmartSettingsWidget</name>
    <message>
        <source>REFRESH S.M.A.R.T. AUTOMATICALLY</source>
        <translation>АВТОМАТИЧЕСКИ ОБНОВЛЯТЬ S.M.A.R.T.</translation>
    </message>
</context>
<context>
    <name>Velmora::Settings::UpdateSettings</name>
    <message>
        <source>UPDATE</source>
        <translation>ОБНОВЛЕНИЕ</translation>
    </message>
</context>
<context>
    <name>Velmora::System::Drive</name>
    <message>
        <source>LOW FREE SPACE ON DRIVE %1.</source>
        <translation>МАЛО СВОБОДНОГО МЕСТА НА ДИСКЕ %1.</translation>
    </message>
    <message>
        <source>LOW LIFE REMAINING ON DRIVE %1.</source>
        <translation>НИЗКИЙ ОСТАТОЧНЫЙ РЕСУРС ДИСКА %1.</translation>
    </message>
    <message>
        <source>BAD SECTORS ON DRIVE %1.</source>
        <translation>СБОЙНЫЕ СЕКТОРЫ НА ДИСКЕ %1.</translation>
    </message>
    <message>
        <source>DRIVE %1 COULD WORK FASTER.</source>
        <translation>ДИСК %1 МОГ БЫ РАБОТАТЬ БЫСТРЕЕ.</translation>
    </message>
</context>
<context>
    <name>Velmora::System::DriveWidget</name>
    <message>
        <source>DRIVE %1 %2 %3 %4</source>
        <translation>ДИСК %1 %2 %3 %4</translation>
    </message>
</context>
<context>
    <name>Velmora::System::FileCategories</name>
    <message>
        <source>SYSTEM</source>
        <translation>СИСТЕМА</translation>
    </message>
    <message>
        <source>PROGRAMS</source>
        <translation>ПРОГРАММЫ</translation>
    </message>
    <message>
        <source>DOCUMENTS</source>
        <translation>ДОКУМЕНТЫ</translation>
    </message>
    <message>
        <source>VIDEO</source>
        <translation>ВИДЕО</translation>
    </message>
    <message>
        <source>SOUND</source>
        <translation>АУДИО</translation>
    </message>
    <message>
        <source>PICTURES</source>
        <translation>ИЗОБРАЖЕНИЯ</translation>
    </message>
    <message>
        <source>OTHER</source>
        <translation>ДРУГОЕ</translation>
    </message>
</context>
<context>
    <name>Velmora::Update::UpdateSettingsWidget</name>
    <message>
        <source>APPLICATION VERSION:</source>
        <translation>ВЕРСИЯ ПРОГРАММЫ:</translation>
    </message>
    <message>
        <source>AVAILABLE VERSION:</source>
        <translation>ДОСТУПНАЯ ВЕРСИЯ:</translation>
    </message>
    <message>
        <source>SPEED:</source>
        <translation>СКОРОСТЬ:</translation>
    </message>
    <message>
        <source>CHECK FOR UPDATES</source>
        <translation>ПРОВЕРИТЬ ОБНОВЛЕНИЯ</translation>
    </message>
    <message>
        <source>ABOUT</source>
        <translation>О ПРОГРАММЕ</translation>
    </message>
    <message>
        <source>%1 MB/s</source>
        <translation>%1 МБ/с</translation>
    </message>
    <message>
        <source>NO UPDATES AVAILABLE</source>
        <translation>НЕТ ДОСТУПНЫХ ОБНОВЛЕНИЙ</translation>
    </message>
    <message>
        <source>DATA NOT AVAILABLE</source>
        <translation>ДАННЫЕ НЕДОСТУПНЫ</translation>
    </message>
    <message>
        <source>DOWNLOADING UPDATE</source>
        <translation>ЗАГРУЗКА ОБНОВЛЕНИЯ</translation>
    </message>
    <message>
        <source>UPDATE FAILED, PLEASE RETRY</source>
        <translation>ОШИБКА ОБНОВЛЕНИЯ, ПОВТОРИТЕ ПОПЫТКУ</translation>
    </message>
    <message>
        <source>COLLECTING DATA</source>
        <translation>СБОР ДАННЫХ</translation>
    </message>
    <message>
        <source>RESTART UPDATE DOWNLOAD</source>
        <translation>ПЕРЕЗАПУСТИТЬ ЗАГРУЗКУ ОБНОВЛЕНИЯ</translation>
    </message>
    <message>
        <source>UPDATE APPLICATION</source>
        <translation>ОБНОВИТЬ ПРОГРАММУ</translation>
    </message>
</context>
</TS>
